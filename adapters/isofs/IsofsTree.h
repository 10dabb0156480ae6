// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quarner {

/// A flat folder of files as libisofs lays it out, Joliet only. Only this class uses libisofs.
struct IsofsTree {
    /// A file: its name on the disc, and the path of the regular file on disk (absolute, without
    /// symbolic links).
    struct Entry {
        std::string name;
        std::string path;
    };

    std::uint64_t blocks = 0;    ///< of 2048 bytes, the whole disc
    std::vector<std::byte> head; ///< the blocks before the files' content

    /// Lays out the entries. Returns an empty text, or what went wrong; the tree must not be used
    /// then. Any thread. Calls on several threads are serialised, because the library has global
    /// state.
    std::string layOut(const std::string& volumeName, const std::vector<Entry>& entries);
};

} // namespace quarner
