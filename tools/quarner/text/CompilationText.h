// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/quarner/options/DiscKind.h"

namespace quarner::cli {

/// What is to be burnt, and what it takes of the disc.
struct Compilation {
    DiscKind kind = DiscKind::Audio;
    std::shared_ptr<const DiscItems> items; ///< never null
    DiscCapacity capacity;
};

/// The tracks or files with their numbers, names, durations and sizes, and their sum; one a line.
std::vector<std::string> trackList(const Compilation& compilation, std::size_t columns);

/// A bar that is filled to a fraction (kept between 0 and 1), a number of columns wide with its
/// brackets. A fraction above 0 shows, and only the whole fills the bar.
std::string bar(double fraction, std::size_t columns, bool isUtf8);

/// The bar of used against free capacity, and the figures.
std::string usageLine(const DiscCapacity& capacity, std::size_t columns, bool isUtf8);

/// The one line of a burn's progress: what is being done, how much of the whole burn is done, and
/// the time left, if it is known. On a narrow screen the bar goes first, then the time.
std::string progressLine(const DiscBurnProgress& progress, std::size_t columns, bool isUtf8);

} // namespace quarner::cli
