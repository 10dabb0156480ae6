// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The parts of an image's path.
struct ImagePath {
    std::string folder; ///< absolute
    std::string stem;   ///< the file's name without its extension
    std::string path;   ///< the whole

    /// Returns the folder with a slash at its end.
    std::string base() const { return folder.ends_with('/') ? folder : folder + '/'; }
};

/// Splits a path, following symbolic links, also if the file does not exist. Returns `std::nullopt`
/// if it does not end in a file name with this extension (".cue"), ignoring case.
std::optional<ImagePath> imagePath(const std::string& path, const std::string& extension);

} // namespace quarner
