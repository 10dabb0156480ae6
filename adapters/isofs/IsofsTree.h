// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "adapters/worker/JolietProtocol.h"

namespace quarner {

/// A flat folder of files as libisofs lays it out, Joliet only. Only this class uses libisofs.
struct IsofsTree {
    std::uint64_t blocks = 0;    ///< of `dataBlockSize` bytes, the whole disc
    std::vector<std::byte> head; ///< the blocks before the files' content

    /// Lays out a folder. Opens no file. Returns an empty text, or what went wrong; the tree must
    /// not be used then.
    std::string layOut(const JolietFolder& folder);
};

} // namespace quarner
