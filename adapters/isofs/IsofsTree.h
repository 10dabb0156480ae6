// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quarner {

/// A flat folder of files as libisofs lays it out, Joliet only. The one place that knows libisofs.
struct IsofsTree {
    /// A file under its name on the disc, and the regular file on disk (an absolute path without
    /// symbolic links).
    struct Entry {
        std::string name;
        std::string path;
    };

    std::uint64_t blocks = 0;    ///< of 2048 bytes, the whole disc
    std::vector<std::byte> head; ///< the blocks in front of the files' content

    /// Lays the entries out. Answers an empty text, or what was wrong; the tree is of no use then.
    /// Any thread; calls on several threads follow one another, because the library keeps state
    /// of the process.
    std::string layOut(const std::string& volumeName, const std::vector<Entry>& entries);
};

} // namespace quarner
