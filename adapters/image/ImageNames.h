// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The files of one image, and the names that they bear on their way. All in one folder.
///
/// The BIN is named after the CUE, as some readers expect, in the case of its letters: mix.cue and
/// mix.bin, MIX.CUE and MIX.BIN, mix.Cue and mix.Bin. A double quote or a control character, which
/// a CUE sheet cannot express, becomes a low line in the BIN's name, and a number is added that
/// keeps such names apart. Bytes that are not UTF-8 stay as they are. All readers that were tried
/// take names of up to 120 bytes; a few fail at longer ones. Where a name would be longer than
/// the file system allows, the end of its stem gives way to a number; the CUE's own never changes.
struct ImageNames {
    std::string folder;   ///< absolute
    std::string cue;      ///< the image's own path
    std::string plainBin; ///< where the BIN belongs: mix.bin
    /// Where the new BIN stands for a moment while the CUE names the old one: mix.bin.new, which no
    /// other image's BIN can be called.
    std::string newBin;
    std::string lock;        ///< .mix.bin.lock
    std::string binPart;     ///< .mix.bin.part: the BIN that is being written
    std::string linkPart;    ///< .mix.bin.link.part: a second name of the new BIN
    std::string cuePart;     ///< .mix.cue.part: the CUE that makes the new image valid
    std::string lastCuePart; ///< .mix.cue.last.part: the CUE that names the plain BIN again

    /// The name of a path without its folder.
    static std::string baseName(const std::string& path);
};

/// The names for an image at a path, a symbolic link followed; nothing when the path does not end
/// in a file name with the extension cue.
std::optional<ImageNames> imageNames(const std::string& cuePath);

} // namespace quarner
