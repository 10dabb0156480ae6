// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/DRErrors.h"
#include "quarner/project/DiscBurn.h"

namespace quarner {

/// What an error code means, as a sentence in the user's language: "There is no disc in the drive."
std::string textForBurnError(DRError code);

/// What the user can do about it, as a sentence; empty if there is nothing to say. `imageBytes` is
/// the size that an image of the disc would have; 0 if that is unknown.
std::string adviceForBurnError(DRError code, std::uint64_t imageBytes);

/// A time as "0:07", "1:02:03".
std::string textForTimeLeft(std::uint64_t seconds);

/// What a burn does: "Writing track 2 of 9".
std::string textForBurnStep(const DiscBurnProgress& progress);

} // namespace quarner
