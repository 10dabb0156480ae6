// SPDX-License-Identifier: LGPL-2.1-or-later
//
// How to find out whether the kernel has noticed the written disc:
//
// - CDROM_MEDIA_CHANGED returns whether the drive has reported another disc since the last such
//   call, and forgets it. So the constructor forgets the disc that was inserted before the burn. If
//   another program has asked in between, the disc is reloaded without need, which harms nothing.
// - The size of a data disc must also be that of what was written: the drive of a rewritable disc
//   may have reported another disc when it was blanked. The size alone proves nothing, because the
//   old content may have had the same one.
// - The size of an audio disc proves nothing: many drives refuse READ CAPACITY for it, and the
//   kernel then uses the same size as for a blank disc. CDROM_DISC_STATUS does not help either: it
//   reads the table of contents from the drive and not what the kernel has kept.
#include "adapters/drive/DiscReload.h"

#include <linux/cdrom.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <string>
#include <utility>

#include "adapters/drive/DriveOpening.h"
#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/SharedNode.h"
#include "adapters/engine/BurnFailure.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

using Clock = std::chrono::steady_clock;

/// The system itself opens a drive for a moment after it was written to.
constexpr std::chrono::seconds busyTimeout{3};

/// The number of blocks that a drive may count after the last track: run-out and post-gap.
constexpr std::uint64_t mostBlocksAfterTrack = 152;

bool takeChange(const SharedNode& node) {
    return ioctl(node.descriptor(), CDROM_MEDIA_CHANGED, CDSL_CURRENT) == 1;
}

} // namespace

DiscReload::DiscReload(DriveRecord record, const DiscPlan& plan)
    : _record(std::move(record)), _blocks(plan.sectors()),
      _isData(plan.sectorSize != audioSectorSize) {
    takeChange(SharedNode(_record.node));
}

DiscReload::Result DiscReload::perform(std::chrono::milliseconds timeout) const {
    if (isNoticed())
        return Result::NotNeeded;
    {
        const DriveNode node(_record.node, busyTimeout, nullptr);
        if (!node.canReload())
            return Result::NotSupported;
        if (node.isTrayOpen())
            return Result::NotNeeded;
        const Clock::time_point end = Clock::now() + timeout;
        if (!node.reload())
            throw BurnFailure(DRError::DeviceBusy, "the tray did not open and close again");
        waitUntilReady(node, end);
    } // the kernel reports another disc to udev only when no program has the drive exclusively
    checkSize();
    return Result::Reloaded;
}

bool DiscReload::isNoticed() const {
    const SharedNode node(_record.node);
    return takeChange(node) && (!_isData || hasExpectedSize(node.descriptor()));
}

bool DiscReload::hasExpectedSize(int descriptor) const {
    std::uint64_t bytes = 0;
    if (ioctl(descriptor, BLKGETSIZE64, &bytes) != 0)
        return false;
    const std::uint64_t most =
        std::max<std::uint64_t>(_blocks, DRTrack::minimumSectors) + mostBlocksAfterTrack;
    return bytes >= _blocks * dataBlockSize && bytes <= most * dataBlockSize;
}

void DiscReload::waitUntilReady(const DriveNode& node, Clock::time_point end) const {
    while (!node.isReady()) {
        if (!isAttached(_record))
            throw BurnFailure(DRError::DeviceVanished, "unplugged while it reloaded the disc");
        if (Clock::now() >= end)
            throw BurnFailure(DRError::MediaNotPresent,
                              node.isTrayOpen() ? "the tray did not close again"
                                                : "the reloaded disc does not get ready");
        waitForDrive(nullptr);
    }
}

void DiscReload::checkSize() const {
    const SharedNode node(_record.node);
    if (_isData && !hasExpectedSize(node.descriptor()))
        throw BurnFailure(DRError::Internal, "the system has the old size of the disc also after "
                                             "the tray was opened and closed");
}

} // namespace quarner
