// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// Looks for a file in the tree that this code was loaded from, the library's or the program's:
/// `folder`, as in "share/locale", beside one of the folders that the library is in, with `file`
/// in it. So the build tree and an installed tree that was moved find what belongs to them. Returns
/// the folder's path, or `otherwise`. Any thread.
std::string folderOfOwnTree(const std::string& folder, const std::string& file,
                            const std::string& otherwise);

} // namespace quarner
