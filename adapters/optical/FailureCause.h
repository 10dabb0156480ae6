// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "adapters/engine/StopSignal.h"
#include "adapters/optical/DriveRecord.h"
#include "quarner/platform/DRErrors.h"

namespace quarner {

class GrabbedDrive;

/// Returns the cause of a failure if the drive can still be queried: `MediaNotPresent` if it has no
/// disc any more; `DeviceVanished` if it does not respond and disappears from the system within a
/// second; otherwise `error`. Throws `BurnFailure` if the burn is stopped.
DRError causeBehind(DRError error, const GrabbedDrive& grabbed, const DriveRecord& record,
                    const StopSignal& stop);

} // namespace quarner
