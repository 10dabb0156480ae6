// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstdint>

#include "adapters/drive/DriveNode.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/worker/DriveRecord.h"

namespace quarner {

/// Makes the kernel, and with it udev and every program, see the disc that a burn has written. The
/// kernel reads the size of a disc again only after the drive has reported another disc. Many
/// drives do not report one that they have written themselves: the disc keeps its old size, counts
/// as blank and cannot be mounted until the tray is opened and closed.
class DiscReload {
public:
    enum class Result {
        NotNeeded,   ///< the kernel has noticed, or the tray is open
        Reloaded,    ///< the tray was opened and closed, and the disc is ready
        NotSupported ///< the drive cannot close its tray; nothing was moved
    };

    /// Begins to observe whether the kernel notices another disc. Construct it when the burn has
    /// locked the tray, before anything is written.
    DiscReload(DriveRecord record, const DiscPlan& plan);

    /// Reloads the disc unless the kernel has noticed it. Call it after a successful burn, when
    /// libburn has released the drive. `timeout` limits the wait for the disc to become ready.
    /// Throws `BurnFailure` if another program uses the drive, if the tray does not move, if the
    /// disc does not become ready, if the kernel still has the old size, and, at once, if the drive
    /// is unplugged.
    Result perform(std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;

private:
    bool isNoticed() const;
    bool hasExpectedSize(int descriptor) const;
    void waitUntilReady(const DriveNode& node, std::chrono::steady_clock::time_point end) const;
    void checkSize() const;

    const DriveRecord _record;
    const std::uint64_t _blocks;
    const bool _isData;
};

} // namespace quarner
