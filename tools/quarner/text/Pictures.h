// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quarner/platform/Value.h"
#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {

/// A bar that is filled to a fraction (kept between 0 and 1), a number of columns wide with its
/// brackets. A fraction above 0 shows, and only the whole fills the bar.
std::string bar(double fraction, std::size_t columns, bool isUtf8);

/// Seconds as "0:07", "1:02:03"; "--:--" from a hundred hours on.
std::string timeLeftText(std::uint64_t seconds);

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

/// The bar of used against free capacity, and the figures.
std::string usageLine(const Compilation& compilation, std::size_t columns, bool isUtf8);

/// The one line of a burn's progress: what is being done, how much of it, and the time left (not
/// known before there is progress, left out where it is never told). On a narrow screen the bar
/// goes first, then the time.
std::string progressLine(std::string_view state, double fraction,
                         std::optional<std::uint64_t> lefttime, std::size_t columns, bool isUtf8);

} // namespace quarner::cli
