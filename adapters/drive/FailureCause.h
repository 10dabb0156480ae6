// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/DriveRecord.h"
#include "quarner/platform/DRErrors.h"

namespace quarner {

class GrabbedDrive;

/// Returns the cause of a failure if the drive can still be queried: `MediaNotPresent` if it has no
/// disc any more; `DeviceVanished` if it does not respond and disappears from the system within a
/// second; otherwise `error`. Throws `BurnFailure` if the burn is stopped.
DRError causeBehind(DRError error, const GrabbedDrive& grabbed, const DriveRecord& record,
                    const StopSignal& stop);

/// A message of libburn.
struct LibraryMessage {
    std::uint64_t moment = 0; ///< its place in the sequence of all messages
    int severity = 0;         ///< libburn's rank: the higher, the more severe
    std::string text;
};

/// Returns the message later than `moment` that best explains a failure; empty if there is none.
/// That is the most severe one with the sense data of a failed SCSI command, since libburn reports
/// its consequences with a higher severity; without one, the most severe of all. Of several, the
/// first.
std::string failureReason(const std::deque<LibraryMessage>& messages, std::uint64_t moment);

} // namespace quarner
