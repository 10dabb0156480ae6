// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The final and the temporary names of a data disc's image, all in one folder. If a hidden name
/// would be longer than the file system allows, a hash replaces the end of its stem.
struct IsoNames {
    std::string folder; ///< absolute
    std::string iso;    ///< the image's own path
    std::string lock;   ///< .mix.iso.lock
    std::string part;   ///< .mix.iso.part: the image that is being written
};

/// Returns the names for an image at a path, following symbolic links; `std::nullopt` if the path
/// does not end in a file name with the extension iso.
std::optional<IsoNames> isoNames(const std::string& path);

} // namespace quarner
