// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The path of an image in its parts.
struct ImagePath {
    std::string folder; ///< absolute
    std::string stem;   ///< the file's name without its extension
    std::string path;   ///< the whole

    /// The folder with a slash at its end.
    std::string base() const { return folder.ends_with('/') ? folder : folder + '/'; }
};

/// Takes a path apart, a symbolic link followed, also to where nothing is yet; nothing when it does
/// not end in a file name with this extension (".cue"), in whatever case.
std::optional<ImagePath> imagePath(const std::string& path, const std::string& extension);

} // namespace quarner
