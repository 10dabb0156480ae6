// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "adapters/posix/FileDescriptor.h"

namespace quarner {

/// Throws `BurnFailure` if an image may not replace what is at a path: something that is not a
/// regular file, a file that this user may not write to, or one whose status cannot be read.
void refuseIrreplaceable(const std::string& path);

/// Whether anything has this path, a symbolic link that leads nowhere included. Throws
/// `BurnFailure` if its status cannot be read.
bool isThere(const std::string& path);

/// The status of the file at a path, symbolic links followed. Returns `std::nullopt` if there is
/// none. Throws `BurnFailure` if its status cannot be read.
std::optional<struct stat> statusOf(const std::string& path);

/// Gives a new file the permissions of an old one, and its owner and group as far as this user may
/// give them. What the old file granted to another owner or group is not granted to the new one's:
/// the owner can always read and write it then, and its group gets what everybody gets. Returns
/// false, with `errno`, if the permissions cannot be set; a file system without permissions is
/// fine.
bool takeAccess(const FileDescriptor& file, const struct stat& old);

} // namespace quarner
