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

    // What the file's tags say, for display only: it is never written to a disc.
    std::string title;             ///< of the piece; empty if the file does not say it
    std::string artist;            ///< of the piece; empty if the file does not say it
    std::string album;             ///< empty if the file does not say it
    std::uint32_t trackNumber = 0; ///< on its album; 0 if the file does not say it

    BurnItemRef item; ///< the item of the burner
};

/// A row as a project and its observers share it.
using DiscItemRef = std::shared_ptr<const DiscItem>;

/// The rows of a project at one moment, in their order; none of them is null. Any thread.
using DiscItems = std::vector<DiscItemRef>;

} // namespace quarner
