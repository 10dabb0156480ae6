// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The final and the temporary names of the files of an audio image, all in one folder.
///
/// The BIN is named after the CUE, as some readers expect, with the same case: mix.cue and mix.bin,
/// MIX.CUE and MIX.BIN, mix.Cue and mix.Bin. A double quote or a control character, which a CUE
/// sheet cannot express, becomes an underscore in the BIN's name, and a hash is appended to
/// distinguish such names. Bytes that are not UTF-8 are kept. All tested readers accept names of up
/// to 120 bytes; a few fail at longer ones. If a name would be longer than the file system allows,
/// a hash replaces the end of its stem; the CUE's own name never changes.
struct CueNames {
    std::string folder;   ///< absolute
    std::string cue;      ///< the image's own path
    std::string plainBin; ///< the final name of the BIN: mix.bin
    /// The temporary name of the new BIN while the CUE refers to the old one: mix.bin.new, which
    /// cannot be the name of another image's BIN.
    std::string newBin;
    std::string lock;     ///< .mix.bin.lock
    std::string binPart;  ///< .mix.bin.part: the BIN that is being written
    std::string linkPart; ///< .mix.bin.link.part: a second name of the new BIN
    std::string cuePart;  ///< .mix.cue.part: the CUE that makes the new image valid
    std::string
        lastCuePart; ///< .mix.cue.last.part: the CUE that refers to the final BIN name again

    /// Returns the name of a path without its folder.
    static std::string baseName(const std::string& path);
};

/// Returns the names for an image at a path, following symbolic links; `std::nullopt` if the path
/// does not end in a file name with the extension cue, ignoring case. The file need not exist.
std::optional<CueNames> cueNames(const std::string& cuePath);

/// The final and the temporary names of a data disc's image, all in one folder. If a hidden name
/// would be longer than the file system allows, a hash replaces the end of its stem.
struct IsoNames {
    std::string folder; ///< absolute
    std::string iso;    ///< the image's own path
    std::string lock;   ///< .mix.iso.lock
    std::string part;   ///< .mix.iso.part: the image that is being written
};

/// Returns the names for an image at a path, following symbolic links; `std::nullopt` if the path
/// does not end in a file name with the extension iso, ignoring case. The file need not exist.
std::optional<IsoNames> isoNames(const std::string& path);

} // namespace quarner
