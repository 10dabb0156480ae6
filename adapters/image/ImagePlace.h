// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/ImageNames.h"

namespace quarner {

/// Returns the status of the file at a path, following symbolic links; `std::nullopt` if there is
/// none. Throws `BurnFailure` if the status cannot be read.
std::optional<struct stat> statusOf(const std::string& path);

/// Returns whether anything has this path, a symbolic link that leads nowhere included. Throws
/// `BurnFailure` if that cannot be found out.
bool isThere(const std::string& path);

/// Throws `BurnFailure` if an image with these names cannot be made, as far as that is known
/// without writing: one of them is not a file, or a file that this user may not write to; a name is
/// impossible; or the folder cannot be written to.
void refuseUnfitPlace(const CueNames& names);
void refuseUnfitPlace(const IsoNames& names);

/// Returns the failure of a burn to an image at this path for one of those reasons; `std::nullopt`
/// if there is none, and for a path that is not an image's.
std::optional<BurnFailure> problemOfPlace(const std::string& path);

} // namespace quarner
