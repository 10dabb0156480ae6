// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "quarner/platform/BurnItem.h"

namespace quarner {

/// One change of a burner's list (`Quarner::takeChanges`). Whoever applies all changes in order to
/// a copy of the list has the list.
struct ListChange {
    /// What happened to the items.
    enum class Kind {
        Inserted, ///< the items now have the rows `rows`
        Removed,  ///< the items had the rows `rows` before
        Moved     ///< the items had the rows `rows` before, and now follow one another from `to`
    };

    Kind kind = Kind::Inserted;           ///< what happened to the items
    std::vector<std::uint64_t> rows = {}; ///< from 0, ascending; never empty
    BurnItemList items = {};              ///< one for each row
    std::uint64_t to = 0; ///< of `Moved`: the row that the first of the items now has
};

} // namespace quarner
