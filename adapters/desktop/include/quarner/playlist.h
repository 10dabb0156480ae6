// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "quarner/platform/Export.h"
/// @file
/// Playlists and folders, whose files a host adds in their order (`DiscProject::add`,
/// `Quarner::addFilesInOrder`).
namespace quarner {

/// The extensions of the playlists that `readPlaylist` reads, in lower case: m3u, m3u8, pls and
/// xspf. Any thread.
QUARNER_EXPORT std::vector<std::string> playlistExtensions();

/// Returns whether a path has one of these extensions, ignoring case.
QUARNER_EXPORT bool isPlaylist(const std::string& path);

/// Reads a playlist from the disk. Returns the paths of its entries in their order, those of a
/// missing file included; `std::nullopt` if the playlist cannot be read, has more than 4 MiB, or is
/// not one of the format that its extension names. Any thread; uses no network and needs no
/// platform.
///
/// A relative entry is resolved against the folder of the playlist, and a `file:` URI is turned
/// into a path. Any other URI is returned as it stands: the burner refuses it as missing. If there
/// is no file of an entry's name, the name is also tried with slashes for backslashes, and as
/// Latin-1 if it is not UTF-8.
QUARNER_EXPORT std::optional<std::vector<std::string>> readPlaylist(const std::string& path);

/// Returns the files that a user means who names these paths, in their order: for a playlist that
/// can be read its entries, and for a folder the files in it that have one of these extensions
/// (`DiscProject::fileExtensions`), sorted by name, and then those in its folders. Without an
/// extension no folder is searched. A search leaves out hidden files and folders, and links to
/// folders. Every other path, and that of a folder that cannot be read, is returned as it stands:
/// the burner says what is wrong with it. Any thread; takes as long as the disk takes, so a search
/// belongs into the background. Once `stop` is requested it ends soon, with what was found by then.
QUARNER_EXPORT std::vector<std::string>
filesToAdd(const std::vector<std::string>& paths,
           const std::vector<std::string>& searchedExtensions = {},
           const std::stop_token& stop = {});

} // namespace quarner
