// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quarner/platform/PCMService.h"

namespace quarner::testing {

/// Returns all values of a stream, read in parts of a fixed number of values; `std::nullopt` if the
/// file cannot be opened or read to its end.
std::optional<std::vector<std::int16_t>> decoded(PCMService& service, const std::string& path,
                                                 std::size_t valuesAtOnce = 4704);

} // namespace quarner::testing
