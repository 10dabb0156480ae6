// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <string>

namespace quarner {

/// "-0123cdef": keeps apart names that were changed into the same one. It tells names apart, not
/// attackers.
std::string numberFor(const std::string& name);

/// How many bytes a file's name in this folder may have.
std::size_t longestNameIn(const std::string& folder);

/// The stem if it has no more bytes than `most`, which is above 12; otherwise its beginning, ended
/// between two characters, and its number.
std::string fittingStem(const std::string& stem, std::size_t most);

} // namespace quarner
