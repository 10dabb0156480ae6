// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/host/Host.h"

namespace quarner::cli {

/// What somebody whose burn failed with this code can do about it, as a sentence; the image would
/// have a number of bytes; empty where there is nothing to say.
std::string adviceForFailedBurn(std::int64_t code, std::uint64_t imageBytes);

/// A failure in full, for people: what the code means, the text on what failed in brackets unless
/// it is empty, and on a line of its own what can be done.
std::string explainedFailure(std::int64_t code, const std::string& detail,
                             std::uint64_t imageBytes);

/// Returns what keeps the disc in a drive from being burnt, whatever is to be on it, and what can
/// be done; an empty text if nothing does.
std::string discProblem(const Host& host, const QuarnerDevice& device);

} // namespace quarner::cli
