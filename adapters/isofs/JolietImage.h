// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/DRFolder.h"
#include "quarner/platform/FileStamp.h"

namespace quarner {

/// The file system of a data disc, laid out: the blocks that describe it, and where the content of
/// each file goes. Blocks have 2048 bytes. An immutable value.
///
/// The disc is laid out like this: 16 blocks of system area; the descriptors, path tables and
/// directories of an ISO 9660 tree in which nothing is listed and of a Joliet tree in which every
/// file is; then the files, each from a block of its own, the rest of its last block zero.
class JolietImage {
public:
    static constexpr std::size_t blockSize = 2048;

    /// The content of a file on the disc.
    struct Extent {
        std::string path; ///< the file on disk
        FileStamp stamp;  ///< as it was when it was added
        std::uint32_t firstBlock = 0;

        std::uint64_t blocks() const { return (stamp.size + blockSize - 1) / blockSize; }
    };

    /// Lays out a folder. Opens no file, but looks at each, as `checkFiles`. Throws `BurnFailure`
    /// when that finds fault or the library does, and for a folder that is to be visible in another
    /// file system than Joliet alone. Any thread; calls on several threads follow one
    /// another.
    static std::unique_ptr<const JolietImage> ofFolder(const DRFolder& folder);

    /// The blocks of the whole disc, exactly.
    std::uint64_t blocks() const { return _blocks; }

    /// Everything in front of the first file's content: whole blocks.
    const std::vector<std::byte>& head() const { return _head; }

    /// The files that have content, in the order of their blocks, which follow the head without
    /// overlapping. What lies between them and after the last is zero.
    const std::vector<Extent>& extents() const { return _extents; }

private:
    std::uint64_t _blocks = 0;
    std::vector<std::byte> _head;
    std::vector<Extent> _extents;
};

/// Throws `BurnFailure` when a file of the folder is gone, may not be read, or is not the one that
/// its node was made of.
void checkFiles(const DRFolder& folder);

} // namespace quarner
