// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <span>
#include <unordered_map>
#include <utility>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// The items of a compilation, published as immutable snapshots: a reader sees a whole list, and
/// changes made at the same time on several threads follow one another without loss. Any thread.
///
/// A snapshot costs nothing to take. Appending an item and removing one take hardly longer in a
/// long list than in a short one; `change` takes time in proportion to the list.
class QUARNER_EXPORT ContentList {
    struct Chunk;
    struct Table;

public:
    /// The list as it was at one moment. It does not change, and keeps its items alive. Any thread.
    class QUARNER_EXPORT Snapshot {
    public:
        /// Valid as long as the snapshot that it came from.
        class QUARNER_EXPORT Iterator {
        public:
            using iterator_category = std::forward_iterator_tag;
            using value_type = BurnItemRef;
            using difference_type = std::ptrdiff_t;
            using pointer = const BurnItemRef*;
            using reference = const BurnItemRef&;

            Iterator() = default;

            reference operator*() const { return _run.front(); }
            pointer operator->() const { return &_run.front(); }
            Iterator& operator++() {
                ++_index;
                _run = _run.subspan(1);
                if (_run.empty())
                    _run = _snapshot->runFrom(_index);
                return *this;
            }
            Iterator operator++(int) {
                const Iterator before = *this;
                ++*this;
                return before;
            }
            bool operator==(const Iterator& other) const { return _index == other._index; }

        private:
            friend Snapshot;
            Iterator(const Snapshot* snapshot, std::size_t index)
                : _snapshot(snapshot), _index(index), _run(snapshot->runFrom(index)) {}

            const Snapshot* _snapshot = nullptr;
            std::size_t _index = 0;
            std::span<const BurnItemRef> _run; // from this item on; empty at the end
        };

        Iterator begin() const { return {this, 0}; }
        Iterator end() const { return {this, _size}; }
        std::size_t size() const { return _size; }
        bool empty() const { return _size == 0; }
        /// The index must be below the size.
        const BurnItemRef& operator[](std::size_t index) const { return runFrom(index).front(); }

        /// True only for snapshots between which the list did not change.
        bool operator==(const Snapshot&) const = default;

    private:
        friend ContentList;
        Snapshot(std::shared_ptr<const Table> table, std::size_t size)
            : _table(std::move(table)), _size(size) {}

        /// The items from an index on that lie side by side; none at the end of the list.
        std::span<const BurnItemRef> runFrom(std::size_t index) const;

        std::shared_ptr<const Table> _table;
        std::size_t _size; // the last chunk may have grown since
    };

    ContentList();
    ~ContentList();
    ContentList(const ContentList&) = delete;
    ContentList& operator=(const ContentList&) = delete;

    Snapshot snapshot() const;

    /// Whether the item, compared by identity, is in the list.
    bool contains(const BurnItemRef& item) const;

    void append(BurnItemRef item);

    /// Removes every occurrence of an item. Returns whether there was any.
    bool remove(const BurnItemRef& item);

    /// Replaces the list by a changed copy. The change runs while other changes wait, so it must
    /// not call back into this list.
    void change(const std::function<void(BurnItemList&)>& change);

private:
    using Ranks = std::unordered_multimap<const BurnItem*, std::uint64_t>;

    // These four under the lock.
    bool isLastChunkFull() const;
    void fillNextSlot(BurnItemRef item);
    std::size_t indexOfRank(std::uint64_t rank) const;
    std::shared_ptr<Table> tableWithout(std::size_t index) const;

    mutable std::mutex _mutex;
    std::shared_ptr<Table> _table;
    std::size_t _size = 0;
    Ranks _ranks;
    std::uint64_t _nextRank = 0;
};

} // namespace quarner
