// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/BurnItem.h"

namespace quarner {

/// One row of a `DiscProject`: a file that will be on the disc. It never changes. Any thread.
struct DiscItem {
    std::uint64_t id = 0;               ///< identifies the row in its project; never used again
    std::string path;                   ///< of the file, aliases resolved; its bytes are unchanged
    std::string displayName;            ///< the name shown to users
    std::vector<std::string> iconNames; ///< in the desktop's icon theme, the best match first
    std::int64_t seconds = 0;           ///< the play time in whole seconds, truncated
    std::int64_t bytes = 0;             ///< the size of the file
    std::string duration;               ///< the play time as "00:03:25"
    std::string size;                   ///< the size as "4.1 MB"

    /// What the file's tags say, for display only: it is never written to a disc. Empty, and 0, for
    /// a file that does not say it.
    std::string title;
    std::string artist;
    std::string album;
    std::uint32_t trackNumber = 0;

    BurnItemRef item; ///< the item of the burner
};

using DiscItemRef = std::shared_ptr<const DiscItem>;

/// The rows of a project at one moment, in their order; none of them is null. Any thread.
using DiscItems = std::vector<DiscItemRef>;

} // namespace quarner
