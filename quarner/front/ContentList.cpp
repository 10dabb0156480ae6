// SPDX-License-Identifier: LGPL-2.1-or-later
// The items lie in chunks, and a table lists the chunks. A snapshot shares the table. Invariants:
// - A published table never changes, nor does a slot of a chunk that a snapshot can see: one below
//   the size of that snapshot. An append fills the next slot of the last chunk, which no snapshot
//   has seen, and replaces the table only when that chunk is full.
// - An insertion and a removal replace the table and one or two chunks. A new chunk has no slot
//   that was ever seen beyond its last item, so it may be appended to if it is the last.
// - Every chunk has a number, which its replacement keeps. `_chunks` knows the number of the chunk
//   in which an item lies, so an item is found by looking through one chunk.
// - The places are in the order of the list, those at one index in the order of what they insert.
#include "quarner/front/ContentList.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace quarner {
namespace {

constexpr std::size_t chunkSize = 256;

/// An operation on one item copies a chunk, one on the list copies everything, which is sooner done
/// than the former for each of many.
constexpr std::size_t itemsPerOperation = 16;

/// The number of items before an index that are not marked.
std::size_t unmarkedBefore(const std::vector<bool>& isMarked, std::size_t index) {
    return static_cast<std::size_t>(
        std::count(isMarked.begin(), isMarked.begin() + static_cast<std::ptrdiff_t>(index), false));
}

} // namespace

struct ContentList::Chunk {
    std::array<BurnItemRef, chunkSize> items;

    std::shared_ptr<Chunk> part(std::size_t from, std::size_t until) const {
        auto part = std::make_shared<Chunk>();
        std::copy(items.begin() + from, items.begin() + until, part->items.begin());
        return part;
    }
    std::shared_ptr<Chunk> without(std::size_t slot, std::size_t count) const {
        auto rest = part(0, slot);
        std::copy(items.begin() + slot + 1, items.begin() + count, rest->items.begin() + slot);
        return rest;
    }
    std::shared_ptr<Chunk> with(BurnItemRef item, std::size_t slot, std::size_t count) const {
        auto longer = part(0, slot);
        std::copy(items.begin() + slot, items.begin() + count, longer->items.begin() + slot + 1);
        longer->items[slot] = std::move(item);
        return longer;
    }
};

struct ContentList::Table {
    std::vector<std::shared_ptr<Chunk>> chunks;
    std::vector<std::size_t> starts;    // the index of each chunk's first item
    std::vector<std::uint64_t> numbers; // of the chunks

    std::size_t chunkAt(std::size_t index) const {
        const auto next = std::upper_bound(starts.begin(), starts.end(), index);
        return static_cast<std::size_t>(next - starts.begin()) - 1;
    }
    std::size_t chunkWithNumber(std::uint64_t number) const {
        const auto found = std::find(numbers.begin(), numbers.end(), number);
        return static_cast<std::size_t>(found - numbers.begin());
    }
    std::size_t endOf(std::size_t chunk, std::size_t size) const {
        return chunk + 1 < starts.size() ? starts[chunk + 1] : size;
    }
    void insertChunk(std::size_t place, std::shared_ptr<Chunk> chunk, std::size_t start,
                     std::uint64_t number) {
        const auto offset = static_cast<std::ptrdiff_t>(place);
        chunks.insert(chunks.begin() + offset, std::move(chunk));
        starts.insert(starts.begin() + offset, start);
        numbers.insert(numbers.begin() + offset, number);
    }
    void dropChunk(std::size_t chunk) {
        const auto offset = static_cast<std::ptrdiff_t>(chunk);
        chunks.erase(chunks.begin() + offset);
        starts.erase(starts.begin() + offset);
        numbers.erase(numbers.begin() + offset);
    }
};

struct ContentList::PlaceState {
    std::size_t index = 0; ///< of the item behind the place
    std::size_t own = 0;   ///< the items right before the place that it has inserted

    /// The items before an index are `by` more now.
    void shift(std::size_t from, std::size_t by) {
        if (from > index - own)
            own = index - from;
        index += by;
    }
    /// Only the items that are not marked remain.
    void keepUnmarked(const std::vector<bool>& isMarked) {
        const std::size_t before = unmarkedBefore(isMarked, index - own);
        index = unmarkedBefore(isMarked, index);
        own = index - before;
    }
};

class ContentList::Change {
public:
    explicit Change(ContentList& list)
        : _list(list), _lock(list._mutex), _before(list._table), _isFirst(list._changes.empty()) {}
    ~Change() {
        const bool hasNews = _isFirst && !_list._changes.empty();
        const auto onFirst = hasNews ? _list._onFirst : nullptr;
        _lock.unlock();
        _before.reset();
        if (onFirst)
            (*onFirst)();
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

private:
    ContentList& _list;
    std::unique_lock<std::mutex> _lock;
    std::shared_ptr<Table> _before;
    const bool _isFirst;
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
    return _chunks.contains(item.get());
}

void ContentList::append(BurnItemRef item) {
    const Change change(*this);
    recordOne(ListChange::Kind::Inserted, _size, item);
    appendLocked(std::move(item));
}

ContentList::Place ContentList::placeBefore(std::uint64_t index) {
    const std::lock_guard lock(_mutex);
    return index < _size ? newPlace(static_cast<std::size_t>(index), true) : newPlace(_size, false);
}

ContentList::Place ContentList::placeBehind(const BurnItemRef& item) {
    const std::lock_guard lock(_mutex);
    if (!item)
        return newPlace(0, true);
    const std::optional<std::size_t> index = indexOf(item);
    return index ? newPlace(*index + 1, true) : newPlace(_size, false);
}

ContentList::Place ContentList::newPlace(std::size_t index, bool isInFront) {
    const auto isBefore = [&](const Place& other) {
        return other->index < index || (other->index == index && (other->own > 0 || !isInFront));
    };
    const std::vector<Place> all = places();
    const auto behind = std::partition_point(all.begin(), all.end(), isBefore);
    auto place = std::make_shared<PlaceState>(PlaceState{.index = index});
    _places.insert(_places.begin() + (behind - all.begin()), place);
    return place;
}

std::vector<ContentList::Place> ContentList::places() {
    std::vector<Place> all;
    for (const auto& weak : _places)
        if (Place place = weak.lock())
            all.push_back(std::move(place));
    _places.assign(all.begin(), all.end());
    return all;
}

void ContentList::insert(const Place& place, BurnItemRef item) {
    const Change change(*this);
    const std::size_t index = place->index;
    recordOne(ListChange::Kind::Inserted, index, item);
    insertLocked(index, std::move(item));
    const std::vector<Place> all = places();
    const auto self = std::find(all.begin(), all.end(), place);
    std::for_each(self + 1, all.end(), [&](const Place& later) { later->shift(index, 1); });
    ++place->index;
    ++place->own;
}

bool ContentList::remove(const BurnItemRef& item) {
    const Change change(*this);
    bool isFound = false;
    while (const std::optional<std::size_t> index = indexOf(item)) {
        recordOne(ListChange::Kind::Removed, *index, item);
        removeLocked(*index);
        isFound = true;
    }
    return isFound;
}

void ContentList::removeAll(const std::unordered_set<BurnItemRef>& items) {
    const Change change(*this);
    removeRows(rowsOf(items));
}

void ContentList::clear() {
    const Change change(*this);
    std::vector<std::size_t> rows(_size);
    std::iota(rows.begin(), rows.end(), std::size_t(0));
    removeRows(rows);
}

bool ContentList::move(const std::set<std::uint64_t>& indexes, std::uint64_t before) {
    const Change change(*this);
    if (!indexes.empty() && *indexes.rbegin() >= _size)
        return false;
    if (!indexes.contains(before))
        moveRows({indexes.begin(), indexes.end()},
                 static_cast<std::size_t>(std::min<std::uint64_t>(before, _size)));
    return true;
}

bool ContentList::moveBehind(const std::unordered_set<BurnItemRef>& items,
                             const BurnItemRef& behind) {
    const Change change(*this);
    const std::optional<std::size_t> index = indexOf(behind);
    if (behind && !index)
        return false;
    moveRows(rowsOf(items), behind ? *index + 1 : 0);
    return true;
}

void ContentList::change(const std::function<void(BurnItemList&)>& change) {
    BurnItemList before; // these two released after the lock
    BurnItemList items;
    const Change locked(*this);
    before = itemsLocked();
    items = before;
    change(items);
    replaceLocked(items);
    recordAll(ListChange::Kind::Removed, before);
    recordAll(ListChange::Kind::Inserted, items);
    findPlacesAgain(before);
}

void ContentList::findPlacesAgain(const BurnItemList& before) {
    std::vector<Place> all = places();
    for (const Place& place : all) {
        std::size_t left = place->index;
        while (left > 0 && !indexOf(before[left - 1]))
            --left;
        *place = {.index = left == 0 ? 0 : *indexOf(before[left - 1]) + 1};
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Place& a, const Place& b) { return a->index < b->index; });
    _places.assign(all.begin(), all.end());
}

void ContentList::recordChanges(std::function<void()> onFirst) {
    std::vector<ListChange> discarded; // these two released after the lock
    std::shared_ptr<const std::function<void()>> previous;
    if (onFirst)
        previous = std::make_shared<const std::function<void()>>(std::move(onFirst));
    const std::lock_guard lock(_mutex);
    discarded.swap(_changes);
    previous.swap(_onFirst);
}

std::vector<ListChange> ContentList::takeChanges() {
    const std::lock_guard lock(_mutex);
    return std::exchange(_changes, {});
}

void ContentList::recordAll(ListChange::Kind kind, const BurnItemList& items) {
    if (!_onFirst || items.empty())
        return;
    ListChange change{
        .kind = kind, .rows = std::vector<std::uint64_t>(items.size()), .items = items};
    std::iota(change.rows.begin(), change.rows.end(), std::uint64_t(0));
    _changes.push_back(std::move(change));
}

void ContentList::recordRows(ListChange::Kind kind, const std::vector<std::size_t>& rows,
                             std::size_t to) {
    if (_onFirst)
        _changes.push_back(
            {.kind = kind, .rows = {rows.begin(), rows.end()}, .items = itemsAt(rows), .to = to});
}

void ContentList::recordOne(ListChange::Kind kind, std::size_t row, const BurnItemRef& item) {
    if (!_onFirst)
        return;
    const bool isNextInserted = kind == ListChange::Kind::Inserted && !_changes.empty() &&
                                _changes.back().kind == kind &&
                                _changes.back().rows.back() + 1 == row;
    if (!isNextInserted)
        _changes.push_back({.kind = kind});
    _changes.back().rows.push_back(row);
    _changes.back().items.push_back(item);
}

std::size_t ContentList::endOf(std::size_t chunk) const { return _table->endOf(chunk, _size); }

bool ContentList::isLastChunkFull() const {
    return _table->starts.empty() || _size - _table->starts.back() == chunkSize;
}

void ContentList::fillNextSlot(BurnItemRef item) {
    _chunks.emplace(item.get(), _table->numbers.back());
    _table->chunks.back()->items[_size - _table->starts.back()] = std::move(item);
    ++_size;
}

std::size_t ContentList::indexIn(std::uint64_t number, const BurnItemRef& item) const {
    const std::size_t chunk = _table->chunkWithNumber(number);
    const std::size_t start = _table->starts[chunk];
    const auto items = std::span(_table->chunks[chunk]->items).first(endOf(chunk) - start);
    return start +
           static_cast<std::size_t>(std::find(items.begin(), items.end(), item) - items.begin());
}

ContentList::Chunks::iterator ContentList::entryOf(const BurnItemRef& item, std::uint64_t number) {
    const auto [first, last] = _chunks.equal_range(item.get());
    return std::find_if(first, last, [&](const auto& entry) { return entry.second == number; });
}

std::optional<std::size_t> ContentList::indexOf(const BurnItemRef& item) const {
    const auto found = _chunks.find(item.get());
    return found == _chunks.end() ? std::nullopt : std::optional(indexIn(found->second, item));
}

BurnItemList ContentList::itemsLocked() const {
    const Snapshot now(_table, _size);
    return {now.begin(), now.end()};
}

void ContentList::appendLocked(BurnItemRef item) {
    if (isLastChunkFull()) {
        auto longer = std::make_shared<Table>(*_table);
        longer->insertChunk(longer->chunks.size(), std::make_shared<Chunk>(), _size, _nextChunk++);
        _table = std::move(longer);
    }
    fillNextSlot(std::move(item));
}

void ContentList::insertLocked(std::size_t index, BurnItemRef item) {
    if (index == _size) {
        appendLocked(std::move(item));
        return;
    }
    auto table = std::make_shared<Table>(*_table);
    std::size_t chunk = table->chunkAt(index);
    if (endOf(chunk) - table->starts[chunk] == chunkSize) {
        splitChunk(*table, chunk);
        chunk = table->chunkAt(index);
    }
    const std::size_t start = table->starts[chunk];
    const std::size_t count = table->endOf(chunk, _size) - start;
    _chunks.emplace(item.get(), table->numbers[chunk]);
    table->chunks[chunk] = table->chunks[chunk]->with(std::move(item), index - start, count);
    for (std::size_t later = chunk + 1; later < table->starts.size(); ++later)
        ++table->starts[later];
    _table = std::move(table);
    ++_size;
}

void ContentList::splitChunk(Table& table, std::size_t chunk) {
    constexpr std::size_t half = chunkSize / 2;
    const std::shared_ptr<Chunk> whole = table.chunks[chunk];
    const std::uint64_t number = _nextChunk++;
    for (std::size_t slot = half; slot < chunkSize; ++slot)
        entryOf(whole->items[slot], table.numbers[chunk])->second = number;
    table.chunks[chunk] = whole->part(0, half);
    table.insertChunk(chunk + 1, whole->part(half, chunkSize), table.starts[chunk] + half, number);
}

void ContentList::removeLocked(std::size_t index) {
    auto table = std::make_shared<Table>(*_table);
    const std::size_t chunk = table->chunkAt(index);
    const std::size_t start = table->starts[chunk];
    const std::size_t count = endOf(chunk) - start;
    _chunks.erase(entryOf(table->chunks[chunk]->items[index - start], table->numbers[chunk]));
    for (std::size_t later = chunk + 1; later < table->starts.size(); ++later)
        --table->starts[later];
    if (count == 1)
        table->dropChunk(chunk);
    else
        table->chunks[chunk] = table->chunks[chunk]->without(index - start, count);
    _table = std::move(table);
    --_size;
    for (const Place& place : places()) {
        if (place->index <= index)
            continue;
        if (index >= place->index - place->own)
            --place->own;
        --place->index;
    }
}

std::vector<std::size_t> ContentList::rowsOf(const std::unordered_set<BurnItemRef>& items) const {
    const auto isOnceAtMost = [&](const BurnItemRef& item) {
        return _chunks.count(item.get()) <= 1;
    };
    std::vector<std::size_t> rows;
    if (areFew(items.size()) && std::all_of(items.begin(), items.end(), isOnceAtMost)) {
        for (const BurnItemRef& item : items)
            if (const std::optional<std::size_t> row = indexOf(item))
                rows.push_back(*row);
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    std::size_t row = 0;
    for (const BurnItemRef& item : Snapshot(_table, _size)) {
        if (items.contains(item))
            rows.push_back(row);
        ++row;
    }
    return rows;
}

bool ContentList::areFew(std::size_t count) const { return count < _size / itemsPerOperation; }

BurnItemList ContentList::itemsAt(const std::vector<std::size_t>& rows) const {
    const Snapshot now(_table, _size);
    BurnItemList items;
    for (const std::size_t row : rows)
        items.push_back(now[row]);
    return items;
}

void ContentList::removeRows(const std::vector<std::size_t>& rows) {
    if (rows.empty())
        return;
    recordRows(ListChange::Kind::Removed, rows);
    takeRows(rows);
}

void ContentList::moveRows(const std::vector<std::size_t>& rows, std::size_t before) {
    const auto passed = std::lower_bound(rows.begin(), rows.end(), before) - rows.begin();
    const std::size_t to = before - static_cast<std::size_t>(passed);
    const bool isSame =
        rows.empty() || (to == rows.front() && rows.back() - rows.front() == rows.size() - 1);
    if (isSame)
        return;
    const BurnItemList moved = itemsAt(rows);
    recordRows(ListChange::Kind::Moved, rows, to);
    takeRows(rows);
    for (const Place& place : places())
        if (to < place->index)
            place->shift(to, moved.size());
    putRows(to, moved);
}

/// Takes the items at these rows out of the list, recording nothing.
void ContentList::takeRows(const std::vector<std::size_t>& rows) {
    if (areFew(rows.size())) {
        std::for_each(rows.rbegin(), rows.rend(), [this](std::size_t row) { removeLocked(row); });
        return;
    }
    std::vector<bool> isTaken(_size);
    for (const std::size_t row : rows)
        isTaken[row] = true;
    for (const Place& place : places())
        place->keepUnmarked(isTaken);
    BurnItemList kept;
    std::size_t row = 0;
    for (const BurnItemRef& item : Snapshot(_table, _size))
        if (!isTaken[row++])
            kept.push_back(item);
    replaceLocked(kept);
}

/// Inserts items before a row, recording nothing and leaving the places as they are.
void ContentList::putRows(std::size_t row, const BurnItemList& items) {
    if (areFew(items.size())) {
        for (const BurnItemRef& item : items)
            insertLocked(row++, item);
        return;
    }
    BurnItemList all = itemsLocked();
    all.insert(all.begin() + static_cast<std::ptrdiff_t>(row), items.begin(), items.end());
    replaceLocked(all);
}

void ContentList::replaceLocked(const BurnItemList& items) {
    _table = std::make_shared<Table>();
    _chunks.clear();
    _size = 0;
    for (const BurnItemRef& item : items) {
        if (isLastChunkFull())
            _table->insertChunk(_table->chunks.size(), std::make_shared<Chunk>(), _size,
                                _nextChunk++);
        fillNextSlot(item);
    }
}

} // namespace quarner
