// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "quarner/platform/Value.h"
#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {

/// What a compilation holds against what the disc has room for.
struct Compilation {
    std::vector<Dictionary> items; ///< burn item records
    std::uint64_t used = 0;        ///< seconds with every pause, or bytes: see `DiscTraits`
    std::uint64_t free = 0;        ///< the same; 0 without a disc
    bool hasDisc = false;
    bool overflow = false;
    DiscKind kind = DiscKind::Audio;
};

/// The tracks or files with their numbers, names, durations and sizes, and their sum; one a line.
std::vector<std::string> trackList(const Compilation& compilation, std::size_t columns);

} // namespace quarner::cli
