// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/Value.h"

namespace quarner {

/// Returns the seven entries of BurnItemKeys.h for a file at a resolved path with a play time of
/// `seconds`. A size that cannot be read counts as 0. Any thread.
Dictionary burnItemRecord(const std::string& path, std::int64_t seconds);

} // namespace quarner
