// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <vector>

#include "adapters/worker/DriveRecord.h"

struct udev_device;

namespace quarner {

/// Returns the attached optical drives in the order of their device files. Opens no drive. Returns
/// an empty list if there are none, or if they cannot be listed. Any thread.
///
/// A drive is a block device with udev's property ID_CDROM. If udev has not processed a device,
/// because it is not running or is late, the kernel's information is used, and the drive counts as
/// a writer only if the kernel's table says so. Once udev has processed the device, the list uses
/// udev's information, and a `DriveMonitor` reports the drive.
std::vector<DriveRecord> listDrives();

/// Orders drives by their device files: sr2 before sr10.
bool comesBefore(const DriveRecord& a, const DriveRecord& b);

/// Returns the record of a device if it is an optical drive.
std::optional<DriveRecord> driveRecordOf(udev_device* device);

/// Returns whether the device manager (udev) is running, so that a `DriveMonitor` receives events.
/// Any thread.
bool isUdevRunning();

} // namespace quarner
