// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/CueNames.h"
#include "adapters/image/IsoNames.h"

namespace quarner {

/// Throws `BurnFailure` if an image with these names cannot be made, as far as that is known
/// without writing: one of them is not a file, or a file that this user may not write to; a name is
/// impossible; or the folder cannot be written to.
void refuseUnfitPlace(const CueNames& names);
void refuseUnfitPlace(const IsoNames& names);

/// Returns the failure of a burn to an image at this path for one of those reasons; `std::nullopt`
/// if there is none, and for a path that is not an image's.
std::optional<BurnFailure> problemOfPlace(const std::string& path);

} // namespace quarner
