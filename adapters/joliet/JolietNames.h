// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner {

/// Names on a data disc.
///
/// A Joliet name has at most 64 UCS-2 characters, and contains neither `* / : ; ? \` nor control
/// characters. Each forbidden character, and each byte that is not valid UTF-8, becomes an
/// underscore. A character outside UCS-2 (an emoji) is written as a UTF-16 surrogate pair and
/// counts as two: readers that know UTF-16 show it, others show two substitutes.
///
/// A name that is too long loses the end of its stem and keeps its extension, up to 16 characters
/// of it. Equal names, ignoring case, get a number: the first in the list keeps its name, the next
/// ones become "name (2).mp3", "name (3).mp3". A legal name without a clash is never changed.

/// The most UTF-16 units in a Joliet file name (Joliet specification, 64 characters).
inline constexpr std::size_t jolietNameLimit = 64;
/// Returns the names on the disc for the names of files in one folder, in the same order. All are
/// valid UTF-8, not empty, legal, and different from each other even when case is ignored.
std::vector<std::string> jolietNames(const std::vector<std::string>& fileNames);

/// Returns the name of a disc as valid UTF-8 without control characters. The file system cuts it to
/// the length of its descriptors: 16 characters in the Joliet one, 32 d-characters (A to Z, 0 to 9,
/// the underscore) in the primary one.
std::string volumeName(const std::string& discName);

} // namespace quarner
