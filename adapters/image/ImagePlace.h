// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/ImageNames.h"
#include "adapters/image/IsoNames.h"

namespace quarner {

/// Throws `BurnFailure` when no image can come to be under these names, as far as that can be told
/// without writing anything: at one of them there is something that is not a file, or a file that
/// this user may not write to; no file can have such a name; or nothing may be written to the
/// folder.
void refuseUnfitPlace(const ImageNames& names);
void refuseUnfitPlace(const IsoNames& names);

/// With what a burn to an image at this path would fail for one of those reasons; nothing where
/// there is none, and for a path that does not name an image.
std::optional<BurnFailure> problemOfPlace(const std::string& path);

} // namespace quarner
