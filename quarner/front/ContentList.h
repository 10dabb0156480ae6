// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "quarner/front/ListChange.h"
#include "quarner/platform/BurnItem.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// The items of a compilation, published as immutable snapshots: a reader sees a whole list, and
/// changes made at the same time on several threads follow one another without loss. Any thread.
///
/// A snapshot costs nothing to take. Appending, inserting, removing and moving a few items take
/// hardly longer in a long list than in a short one; other changes take time in proportion to the
/// list.
class QUARNER_EXPORT ContentList {
    struct Chunk;
    struct Table;
    struct PlaceState;

public:
    /// The list as it was at one moment. It does not change, and keeps its items alive. Any thread.
    class QUARNER_EXPORT Snapshot {
    public:
        /// Valid as long as the snapshot that it came from.
        class QUARNER_EXPORT Iterator {
        public:
            using iterator_category = std::forward_iterator_tag; ///< several passes are possible
            using value_type = BurnItemRef;                      ///< an item
            using difference_type = std::ptrdiff_t;              ///< a distance in items
            using pointer = const BurnItemRef*;                  ///< owned by the snapshot
            using reference = const BurnItemRef&;                ///< owned by the snapshot

            /// One that belongs to no snapshot: it can only be assigned to.
            Iterator() = default;

            /// The item, never null. Not at the end.
            reference operator*() const { return _run.front(); }
            /// The same for access to a member.
            pointer operator->() const { return &_run.front(); }
            /// Goes to the next item. Not at the end.
            Iterator& operator++() {
                ++_index;
                _run = _run.subspan(1);
                if (_run.empty())
                    _run = _snapshot->runFrom(_index);
                return *this;
            }
            /// The same, and returns the iterator as it was before.
            Iterator operator++(int) {
                const Iterator before = *this;
                ++*this;
                return before;
            }
            /// Compares iterators of one snapshot.
            bool operator==(const Iterator& other) const { return _index == other._index; }

        private:
            friend Snapshot;
            Iterator(const Snapshot* snapshot, std::size_t index)
                : _snapshot(snapshot), _index(index), _run(snapshot->runFrom(index)) {}

            const Snapshot* _snapshot = nullptr;
            std::size_t _index = 0;
            std::span<const BurnItemRef> _run; // from this item on; empty at the end
        };

        Iterator begin() const { return {this, 0}; }   ///< at the first item
        Iterator end() const { return {this, _size}; } ///< behind the last item
        std::size_t size() const { return _size; }     ///< the number of items
        bool empty() const { return _size == 0; }      ///< whether there is no item
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

    /// Returns the list as it is now. Copies no item.
    Snapshot snapshot() const;

    /// Whether the item, compared by identity, is in the list.
    bool contains(const BurnItemRef& item) const;

    /// Adds an item at the end. The item must not be null.
    void append(BurnItemRef item);

    /// A place between two items at which one owner inserts items, each behind the one before. It
    /// stays where it is while the list changes: behind the item before it, and if that is removed
    /// or moved away, behind the one before that. What others add at this place comes behind it.
    /// The list forgets a place that has no owner.
    using Place = std::shared_ptr<PlaceState>;

    /// Returns a new place before the item at an index; an index past the end means the end. The
    /// items of other places that are right before it stay together: if one of them has inserted
    /// the item before, or if this is the end, the new place is behind it; otherwise before it.
    Place placeBefore(std::uint64_t index);
    /// Returns a new place right behind an item, or at the start for null. Returns one at the end
    /// if the item is not in the list.
    Place placeBehind(const BurnItemRef& item);

    /// Inserts an item at a place of this list.
    void insert(const Place& place, BurnItemRef item);

    /// Removes every occurrence of an item. Returns whether there was any.
    bool remove(const BurnItemRef& item);

    /// Removes every occurrence of these items.
    void removeAll(const std::unordered_set<BurnItemRef>& items);

    /// Removes all items.
    void clear();

    /// Moves the items at these indexes, in their order, to before the item that is now at the
    /// index `before`; past the end means the end. Moves nothing if that item is one of them.
    /// Returns false, and moves nothing, if an index is outside the list.
    bool move(const std::set<std::uint64_t>& indexes, std::uint64_t before);

    /// Moves those of the items that are in the list, in their order there, to right behind an
    /// item, or to the start for null; if that item is one of them, to behind the one before it
    /// that is not. Returns false, and moves nothing, if that item is not in the list.
    bool moveBehind(const std::unordered_set<BurnItemRef>& items, const BurnItemRef& behind);

    /// Replaces the list by a changed copy. The change runs while other changes wait, so it must
    /// not call back into this list.
    void change(const std::function<void(BurnItemList&)>& change);

    /// Records every change from now on, for `takeChanges`. `onFirst` is called on the thread of a
    /// change, outside all locks, when no change was recorded before it. Discards what was recorded
    /// so far. A null `onFirst` ends the recording.
    void recordChanges(std::function<void()> onFirst);

    /// Returns the recorded changes, in the order in which they were made, and forgets them.
    std::vector<ListChange> takeChanges();

private:
    /// Locks the list for a change. On its destruction the lock is released first, then what was
    /// removed, and then the recorder is notified.
    class Change;
    using Chunks = std::unordered_multimap<const BurnItem*, std::uint64_t>;

    // All of these under the lock.
    std::size_t endOf(std::size_t chunk) const;
    bool isLastChunkFull() const;
    void fillNextSlot(BurnItemRef item);
    std::size_t indexIn(std::uint64_t number, const BurnItemRef& item) const;
    std::optional<std::size_t> indexOf(const BurnItemRef& item) const;
    Chunks::iterator entryOf(const BurnItemRef& item, std::uint64_t number);
    void appendLocked(BurnItemRef item);
    void insertLocked(std::size_t index, BurnItemRef item);
    void splitChunk(Table& table, std::size_t chunk);
    void removeLocked(std::size_t index);
    BurnItemList itemsLocked() const;
    void replaceLocked(const BurnItemList& items);
    std::vector<std::size_t> rowsOf(const std::unordered_set<BurnItemRef>& items) const;
    BurnItemList itemsAt(const std::vector<std::size_t>& rows) const;
    bool areFew(std::size_t count) const;
    void removeRows(const std::vector<std::size_t>& rows);
    void moveRows(const std::vector<std::size_t>& rows, std::size_t before);
    void takeRows(const std::vector<std::size_t>& rows);
    void putRows(std::size_t row, const BurnItemList& items);
    Place newPlace(std::size_t index, bool isInFront);
    std::vector<Place> places();
    void findPlacesAgain(const BurnItemList& before);
    void recordOne(ListChange::Kind kind, std::size_t row, const BurnItemRef& item);
    void recordAll(ListChange::Kind kind, const BurnItemList& items);
    void recordRows(ListChange::Kind kind, const std::vector<std::size_t>& rows,
                    std::size_t to = 0);

    mutable std::mutex _mutex;
    std::shared_ptr<Table> _table;
    std::size_t _size = 0;
    Chunks _chunks; // of each occurrence of each item, by the number of the chunk
    std::uint64_t _nextChunk = 0;
    std::vector<std::weak_ptr<PlaceState>> _places; // in the order of the list
    std::shared_ptr<const std::function<void()>> _onFirst;
    std::vector<ListChange> _changes;
};

} // namespace quarner
