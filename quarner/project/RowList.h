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

    /// Applies a change of the burner's list, and sends the events for it: one for each run of rows
    /// that lie side by side.
    void apply(const ListChange& change, ObserverList& observers);

private:
    void insert(const ListChange& change, ObserverList& observers);
    void remove(const ListChange& change, ObserverList& observers);
    void move(const ListChange& change, ObserverList& observers);
    DiscItemRef makeRow(const BurnItemRef& item);

    DiscItems _rows;
    mutable std::shared_ptr<const DiscItems> _snapshot;
    std::uint64_t _lastId = 0;
};

} // namespace quarner
