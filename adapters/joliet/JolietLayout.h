// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/Channel.h"
#include "adapters/worker/JolietProtocol.h"

namespace quarner {

/// A file system as it was laid out.
struct JolietTree {
    std::uint64_t blocks = 0;    ///< of `dataBlockSize` bytes, the whole disc
    std::vector<std::byte> head; ///< the blocks before the files' content
};

/// Lays out a folder in a process of its own, Joliet only. Opens none of its files. Throws
/// `BurnFailure`: with the reason of `stop` (which may be null) once that was requested. Any
/// thread, and several at once.
JolietTree layOut(const JolietFolder& folder, const StopSignal* stop);

/// The same by the program at the other end of a channel, until `end`. `folder` is encoded.
JolietTree layOut(const Channel& channel, std::span<const std::byte> folder,
                  Channel::Clock::time_point end);

} // namespace quarner
