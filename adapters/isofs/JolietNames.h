// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner {

/// Names on a data disc.
///
/// A Joliet name has at most 64 UCS-2 characters, and none of `* / : ; ? \` nor a control
/// character. Here each forbidden character, and each byte that is not valid UTF-8, becomes an
/// underscore. A character outside UCS-2 (an emoji) is written as a UTF-16 surrogate pair and
/// counts as two: readers that know UTF-16 show it, the others show two substitutes.
///
/// Names that are too long lose the end of their stem and keep their extension, up to 16
/// characters of it. Two names that then are alike, case ignored, are told apart by a number: the
/// first in the list keeps its name, the next ones become "name (2).mp3", "name (3).mp3". A name
/// that is legal and unlike all others is never changed.

/// The most UTF-16 units in a Joliet file name (Joliet specification, 64 characters).
inline constexpr std::size_t jolietNameLimit = 64;
/// The most UTF-16 units in a Joliet volume name: 32 bytes in the descriptor (ECMA-119, 8.5.7).
inline constexpr std::size_t jolietVolumeNameLimit = 16;
/// The most characters in a primary volume identifier (ECMA-119, 8.4.7).
inline constexpr std::size_t primaryVolumeNameLimit = 32;

/// The names on the disc for the names of files in one folder, in the same order. All answered
/// names are valid UTF-8, not empty, legal, and different from each other also when case is
/// ignored.
std::vector<std::string> jolietNames(const std::vector<std::string>& fileNames);

/// The name of a disc as a Joliet volume name: cut to its limit, invalid UTF-8 and control
/// characters replaced. May be empty.
std::string jolietVolumeName(const std::string& discName);

/// The name of a disc in the d-characters A to Z, 0 to 9 and the underscore (ECMA-119, 7.4.1):
/// lower case raised, everything else an underscore, cut to 32. An empty name gives "CDROM".
std::string primaryVolumeName(const std::string& discName);

} // namespace quarner
