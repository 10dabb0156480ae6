// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "quarner/platform/FileStamp.h"

namespace quarner {

/// The stamp of a file by what the system says of it.
inline FileStamp stampOf(const struct stat& status) {
    return {.size = static_cast<std::uint64_t>(status.st_size),
            .modifiedSeconds = status.st_mtim.tv_sec,
            .modifiedNanoseconds = status.st_mtim.tv_nsec,
            .device = status.st_dev,
            .inode = status.st_ino};
}

/// Returns the stamp of the regular file at a path, following symbolic links; `std::nullopt` if
/// there is none. Any thread.
std::optional<FileStamp> stampOfFile(const std::string& path);

/// Returns whether this process may read what is at a path, by its effective user. Any thread.
bool mayBeRead(const std::string& path);

} // namespace quarner
