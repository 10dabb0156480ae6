// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "quarner/platform/FileStamp.h"

namespace quarner {

/// A flat folder of files as libisofs lays it out, Joliet only. Only this class uses libisofs.
struct IsofsTree {
    /// A file under its name on the disc. Entries with the same device and inode share their
    /// content on the disc.
    struct Entry {
        std::string name;
        FileStamp stamp;
    };

    std::uint64_t blocks = 0;    ///< of `dataBlockSize` bytes, the whole disc
    std::vector<std::byte> head; ///< the blocks before the files' content

    /// Lays out the entries. Opens no file. Returns an empty text, or what went wrong; the tree
    /// must not be used then. Any thread. Calls on several threads are serialised, because the
    /// library has global state.
    std::string layOut(const std::string& volumeName, const std::vector<Entry>& entries);
};

} // namespace quarner
