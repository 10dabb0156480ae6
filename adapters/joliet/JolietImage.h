// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/engine/StopSignal.h"
#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/platform/FileStamp.h"

namespace quarner {

/// The layout of a data disc's file system: the blocks that describe it, and the position of each
/// file's content. Blocks have `dataBlockSize` bytes. Immutable.
///
/// The disc is laid out as follows: 16 blocks of system area; the descriptors, path tables and
/// directories of an ISO 9660 tree that lists nothing and of a Joliet tree that lists every file;
/// then the files. Each file begins with a new block, and the rest of its last block is zero.
class JolietImage {
public:
    /// The content of a file on the disc.
    struct Extent {
        std::string path; ///< the file on disk
        FileStamp stamp;  ///< when the file was added
        std::uint32_t firstBlock = 0;

        std::uint64_t blocks() const { return (stamp.size + dataBlockSize - 1) / dataBlockSize; }
    };

    /// Lays out a folder. Checks every file as `checkFiles` does, but opens none. Throws
    /// `BurnFailure` if a check or the library fails, if the folder's mask is not Joliet alone, or
    /// if `stop` was requested (null: never). Any thread.
    static std::unique_ptr<const JolietImage> ofFolder(const DRFolder& folder,
                                                       const StopSignal* stop);

    /// The exact number of blocks of the whole disc.
    std::uint64_t blocks() const { return _blocks; }

    /// The blocks before the first file's content.
    const std::vector<std::byte>& head() const { return _head; }

    /// The files that are not empty, in the order of their blocks. They follow the head and do not
    /// overlap. All bytes between them and after the last are zero.
    const std::vector<Extent>& extents() const { return _extents; }

private:
    std::uint64_t _blocks = 0;
    std::vector<std::byte> _head;
    std::vector<Extent> _extents;
};

/// Throws `BurnFailure` if a file of the folder is gone, cannot be read, or was changed or replaced
/// since its node was made.
void checkFiles(const DRFolder& folder);

} // namespace quarner
