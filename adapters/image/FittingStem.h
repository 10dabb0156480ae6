// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <string>

namespace quarner {

/// Returns a hash as "-0123cdef", which distinguishes names that were changed into the same one. It
/// is no protection against forgery.
std::string numberFor(const std::string& name);

/// Returns the longest possible file name in this folder, in bytes.
std::size_t longestNameIn(const std::string& folder);

/// Returns the stem if it has at most `most` bytes (more than 12); otherwise its beginning, cut
/// between two characters, and its hash.
std::string fittingStem(const std::string& stem, std::size_t most);

} // namespace quarner
