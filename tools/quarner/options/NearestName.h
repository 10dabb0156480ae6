// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarner::cli {

/// How many letters must be put in, left out or changed to make one word of the other. Letters are
/// bytes; upper and lower case of ASCII count as the same.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The name that a mistyped word most likely means, the first of several; empty without names.
std::string nearestName(std::string_view word, const std::vector<std::string>& names);

} // namespace quarner::cli
