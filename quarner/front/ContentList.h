// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// The items of a compilation, published as an immutable snapshot: whoever reads sees a whole
/// list, and changes made at the same time on several threads follow one another without loss.
/// A snapshot costs nothing to take and an append takes the same time however long the list is;
/// every other change takes time in proportion to the list.
class QUARNER_EXPORT ContentList {
public:
    /// The list as it was at one moment. It stays as it is while it is held, and the items live as
    /// long. Any thread.
    class Snapshot {
    public:
        const BurnItemRef* begin() const { return _first; }
        const BurnItemRef* end() const { return _first + _size; }
        std::size_t size() const { return _size; }
        bool empty() const { return _size == 0; }
        const BurnItemRef& operator[](std::size_t index) const { return _first[index]; }

        /// True only for snapshots between which the list did not change.
        bool operator==(const Snapshot&) const = default;

    private:
        friend ContentList;
        explicit Snapshot(std::shared_ptr<const BurnItemList> items)
            : _items(std::move(items)), _first(_items->data()), _size(_items->size()) {}

        std::shared_ptr<const BurnItemList> _items; // may have grown since: only keeps it alive
        const BurnItemRef* _first;
        std::size_t _size;
    };

    Snapshot snapshot() const;

    void append(BurnItemRef item);

    /// Replaces the list by a changed copy. The change runs while other changes wait, so it must
    /// not call back into this list.
    void change(const std::function<void(BurnItemList&)>& change);

private:
    mutable std::mutex _mutex;
    // Shared with the snapshots, which read only what was there when they were taken: this grows
    // at its end, within its capacity, and is replaced for any other change.
    std::shared_ptr<BurnItemList> _items = std::make_shared<BurnItemList>();
};

} // namespace quarner
