// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <vector>

#include "adapters/optical/DriveRecord.h"

struct udev_device;

namespace quarner {

/// The optical drives that are attached now, in the order of their device files. No drive is
/// opened. Empty where there are none, and where nothing can be found out. Any thread.
///
/// A drive is a block device that udev has given the property ID_CDROM. One that udev has not
/// looked at, because it does not run or has not come to it, is taken from what the kernel says,
/// and does not count as a writer where the kernel has no table of drives. Once udev has come to
/// it, the list tells what udev says, and a `DriveMonitor` tells of the drive.
std::vector<DriveRecord> listDrives();

/// The order of their device files: sr2 before sr10.
bool comesBefore(const DriveRecord& a, const DriveRecord& b);

/// The record of a device, when it is an optical drive.
std::optional<DriveRecord> driveRecordOf(udev_device* device);

/// Whether the device manager runs, so that a `DriveMonitor` hears of drives. Any thread.
bool isUdevRunning();

} // namespace quarner
