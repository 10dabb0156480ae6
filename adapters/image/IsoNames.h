// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The files of a data disc's image, and the names that they bear on their way. All in one folder.
/// Where a hidden name would be longer than the file system allows, the end of the image's stem
/// gives way to a number.
struct IsoNames {
    std::string folder; ///< absolute
    std::string iso;    ///< the image's own path
    std::string lock;   ///< .mix.iso.lock
    std::string part;   ///< .mix.iso.part: the image that is being written
};

/// The names for an image at a path, a symbolic link followed; nothing when the path does not end
/// in a file name with the extension iso.
std::optional<IsoNames> isoNames(const std::string& path);

} // namespace quarner
