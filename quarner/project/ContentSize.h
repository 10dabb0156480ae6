// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "quarner/front/ContentList.h"
#include "quarner/project/DiscProject.h"

namespace quarner {

/// How large a compilation is.
struct ContentSize {
    DiscProject::Kind kind = DiscProject::Kind::Audio;
    std::size_t count = 0;
    std::uint64_t blocks = 0; ///< sectors of an audio CD, pre-gaps included; blocks of a data CD
    std::uint64_t bytes = 0;  ///< of the files
    bool isExact = true;      ///< false while the blocks of a data CD are those of the files alone

    std::uint64_t imageBytes() const; ///< the size that an image would have
};

/// Measures a list. `dataBlocks` are the blocks of its file system, if they are known.
ContentSize measureContent(DiscProject::Kind kind, const ContentList::Snapshot& items,
                           std::optional<std::uint64_t> dataBlocks);

/// See `DiscProject::capacity` and `DiscProject::problems`.
DiscCapacity capacityOf(const ContentSize& content, const std::optional<DiscDrive>& drive);
std::vector<DiscProblem> problemsOf(const ContentSize& content,
                                    const std::optional<DiscDrive>& drive, bool isBurning);

} // namespace quarner
