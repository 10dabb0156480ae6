// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {

/// What is to be burnt, and what it takes of the disc.
struct Compilation {
    DiscKind kind = DiscKind::Audio;
    std::shared_ptr<const DiscItems> items; ///< never null
    DiscCapacity capacity;
};

/// The tracks or files with their numbers, names, durations and sizes, and their sum; one a line.
std::vector<std::string> trackList(const Compilation& compilation, std::size_t columns);

} // namespace quarner::cli
