// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

namespace quarner {

/// Identifies one state of a file on disk. Two equal stamps mean that the file was neither changed
/// nor replaced in between.
struct FileStamp {
    std::uint64_t size = 0;               ///< bytes
    std::int64_t modifiedSeconds = 0;     ///< since 1970-01-01 00:00 UTC
    std::int64_t modifiedNanoseconds = 0; ///< on top of the seconds, 0 to 999,999,999
    std::uint64_t device = 0;             ///< the number of the file system's device (st_dev)
    std::uint64_t inode = 0;              ///< the number of the file in its file system (st_ino)

    /// Compares every member.
    bool operator==(const FileStamp&) const = default;
};

} // namespace quarner
