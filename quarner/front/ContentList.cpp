// SPDX-License-Identifier: LGPL-2.1-or-later
// The items lie in chunks, and a table lists the chunks. A snapshot shares the table. Invariants:
// - A published table never changes, nor does a slot of a chunk that a snapshot can see: one below
//   the size of that snapshot. An append fills the next slot of the last chunk, which no snapshot
//   has seen, and replaces the table only when that chunk is full.
// - A removal replaces the table and one chunk. A new chunk has no slot that was ever seen beyond
//   its last item, so it may be appended to if it is the last.
// - Every place in the list has a rank. Ranks ascend along the list, whatever is removed, so the
//   place of an item is found by its rank with a binary search.
#include "quarner/front/ContentList.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace quarner {
namespace {

constexpr std::size_t chunkSize = 256;

} // namespace

struct ContentList::Chunk {
    std::array<BurnItemRef, chunkSize> items;
    std::array<std::uint64_t, chunkSize> ranks = {};

    std::shared_ptr<Chunk> without(std::size_t slot, std::size_t count) const {
        auto rest = std::make_shared<Chunk>();
        const auto copyRest = [&](const auto& from, auto& to) {
            const auto place = std::copy_n(from.begin(), slot, to.begin());
            std::copy_n(from.begin() + slot + 1, count - slot - 1, place);
        };
        copyRest(items, rest->items);
        copyRest(ranks, rest->ranks);
        return rest;
    }
};

struct ContentList::Table {
    std::vector<std::shared_ptr<Chunk>> chunks;
    std::vector<std::size_t> starts; // the index of each chunk's first item

    std::size_t chunkAt(std::size_t index) const {
        const auto next = std::upper_bound(starts.begin(), starts.end(), index);
        return static_cast<std::size_t>(next - starts.begin()) - 1;
    }
    std::size_t endOf(std::size_t chunk, std::size_t size) const {
        return chunk + 1 < starts.size() ? starts[chunk + 1] : size;
    }
    void addChunk(std::shared_ptr<Chunk> chunk, std::size_t start) {
        chunks.push_back(std::move(chunk));
        starts.push_back(start);
    }
    void dropChunk(std::size_t chunk) {
        chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(chunk));
        starts.erase(starts.begin() + static_cast<std::ptrdiff_t>(chunk));
    }
};

std::span<const BurnItemRef> ContentList::Snapshot::runFrom(std::size_t index) const {
    if (index >= _size)
        return {};
    const std::size_t chunk = _table->chunkAt(index);
    const std::size_t end = std::min(_table->endOf(chunk, _size), _size);
    const BurnItemRef* const items = _table->chunks[chunk]->items.data();
    return {items + (index - _table->starts[chunk]), end - index};
}

ContentList::ContentList() : _table(std::make_shared<Table>()) {}

ContentList::~ContentList() = default;

ContentList::Snapshot ContentList::snapshot() const {
    const std::lock_guard lock(_mutex);
    return {_table, _size};
}

bool ContentList::contains(const BurnItemRef& item) const {
    const std::lock_guard lock(_mutex);
    return _ranks.contains(item.get());
}

void ContentList::append(BurnItemRef item) {
    const std::lock_guard lock(_mutex);
    if (isLastChunkFull()) {
        auto longer = std::make_shared<Table>(*_table);
        longer->addChunk(std::make_shared<Chunk>(), _size);
        _table = std::move(longer);
    }
    fillNextSlot(std::move(item));
}

bool ContentList::isLastChunkFull() const {
    return _table->starts.empty() || _size - _table->starts.back() == chunkSize;
}

void ContentList::fillNextSlot(BurnItemRef item) {
    Chunk& last = *_table->chunks.back();
    const std::size_t slot = _size - _table->starts.back();
    _ranks.emplace(item.get(), _nextRank);
    last.ranks[slot] = _nextRank++;
    last.items[slot] = std::move(item);
    ++_size;
}

bool ContentList::remove(const BurnItemRef& item) {
    std::shared_ptr<Table> previous; // released after the lock, with what it alone still holds
    const std::lock_guard lock(_mutex);
    const auto [first, last] = _ranks.equal_range(item.get());
    if (first == last)
        return false;
    for (auto rank = first; rank != last; ++rank) {
        previous = std::exchange(_table, tableWithout(indexOfRank(rank->second)));
        --_size;
    }
    _ranks.erase(first, last);
    return true;
}

std::size_t ContentList::indexOfRank(std::uint64_t rank) const {
    const auto& chunks = _table->chunks;
    const auto next = std::upper_bound(
        chunks.begin(), chunks.end(), rank,
        [](std::uint64_t wanted, const auto& chunk) { return wanted < chunk->ranks.front(); });
    const auto chunk = static_cast<std::size_t>(next - chunks.begin()) - 1;
    const std::size_t start = _table->starts[chunk];
    const auto ranks = std::span(chunks[chunk]->ranks).first(_table->endOf(chunk, _size) - start);
    const auto place = std::lower_bound(ranks.begin(), ranks.end(), rank);
    return start + static_cast<std::size_t>(place - ranks.begin());
}

std::shared_ptr<ContentList::Table> ContentList::tableWithout(std::size_t index) const {
    auto table = std::make_shared<Table>(*_table);
    const std::size_t chunk = table->chunkAt(index);
    const std::size_t start = table->starts[chunk];
    const std::size_t count = table->endOf(chunk, _size) - start;
    for (std::size_t later = chunk + 1; later < table->starts.size(); ++later)
        --table->starts[later];
    if (count == 1)
        table->dropChunk(chunk);
    else
        table->chunks[chunk] = table->chunks[chunk]->without(index - start, count);
    return table;
}

void ContentList::change(const std::function<void(BurnItemList&)>& change) {
    BurnItemList items;              // these two released after the lock, with whatever items
    std::shared_ptr<Table> previous; // they alone still hold
    const std::lock_guard lock(_mutex);
    const Snapshot before(_table, _size);
    items.assign(before.begin(), before.end());
    change(items);
    previous = std::exchange(_table, std::make_shared<Table>());
    _ranks.clear();
    _size = 0;
    for (const BurnItemRef& item : items) {
        if (isLastChunkFull())
            _table->addChunk(std::make_shared<Chunk>(), _size);
        fillNextSlot(item);
    }
}

} // namespace quarner
