// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "adapters/engine/StopSignal.h"
#include "adapters/optical/DriveRecord.h"
#include "quarner/platform/DRErrors.h"

namespace quarner {

class GrabbedDrive;

/// What is behind a failure, as far as the drive can still be asked: `MediaNotPresent` when it has
/// no disc any more, `DeviceVanished` when it does not answer and is gone from the system, which is
/// waited for a moment, and otherwise `error`. Throws `BurnFailure` when the burn is stopped.
DRError causeBehind(DRError error, const GrabbedDrive& grabbed, const DriveRecord& record,
                    const StopSignal& stop);

} // namespace quarner
