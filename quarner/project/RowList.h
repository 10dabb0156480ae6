// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "quarner/front/ListChange.h"
#include "quarner/project/DiscItem.h"
#include "quarner/project/ObserverList.h"

namespace quarner {

/// The rows of a project: the burner's list as of the last `apply`. Main thread only.
class RowList {
public:
    std::size_t size() const { return _rows.size(); }
    const DiscItemRef& operator[](std::size_t row) const { return _rows[row]; }
    /// A snapshot, made once for each state of the list.
    std::shared_ptr<const DiscItems> snapshot() const;

    /// The items of the burner in these rows, in their order.
    BurnItemList itemsIn(const std::set<std::size_t>& rows) const;

    /// Applies changes of the burner's list, each in time linear in the length of the list. Returns
    /// the events for them: one for each run of rows that lie side by side. Send them together, as
    /// an observer may change the list inside the first.
    std::vector<ObserverList::Event> apply(const std::vector<ListChange>& changes);

private:
    using Events = std::vector<ObserverList::Event>;

    void insert(const ListChange& change, Events& events);
    void remove(const ListChange& change, Events& events);
    void move(const ListChange& change, Events& events);
    DiscItemRef makeRow(const BurnItemRef& item);

    DiscItems _rows;
    mutable std::shared_ptr<const DiscItems> _snapshot;
    std::uint64_t _lastId = 0;
};

} // namespace quarner
