// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

namespace quarner {

/// Identifies one state of a file on disk. Two equal stamps mean that the file was neither changed
/// nor replaced in between.
struct FileStamp {
    std::uint64_t size = 0;           ///< bytes
    std::int64_t modifiedSeconds = 0; ///< since 1970-01-01 00:00 UTC
    std::int64_t modifiedNanoseconds = 0;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const FileStamp&) const = default;
};

} // namespace quarner
