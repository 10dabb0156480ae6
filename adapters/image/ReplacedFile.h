// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// Throws `BurnFailure` when there is something at a path that is not a regular file, for an image
/// replaces only files, or when that cannot be told.
void refuseOtherThanFile(const std::string& path);

/// Whether anything bears this path, a symbolic link that leads nowhere included.
bool isThere(const std::string& path);

} // namespace quarner
