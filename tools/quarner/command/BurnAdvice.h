// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

namespace quarner::cli {

/// What somebody whose burn of so many seconds failed with this code can do about it, as a
/// sentence; empty where there is nothing to say.
std::string adviceForFailedBurn(std::int64_t code, std::uint64_t seconds);

} // namespace quarner::cli
