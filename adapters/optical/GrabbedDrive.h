// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <memory>
#include <set>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/optical/DriveRecord.h"

namespace burn {
struct burn_drive;
struct burn_drive_info;
} // namespace burn

namespace quarner {

/// How long is waited for a drive.
struct DrivePatience {
    std::chrono::milliseconds busy;    ///< that another program has open
    std::chrono::milliseconds loading; ///< that loads or examines a disc
};

/// A drive that still loads or examines its disc.
class DiscIsLoading : public BurnFailure {
public:
    explicit DiscIsLoading(const std::string& node)
        : BurnFailure(DRError::MediaNotPresent, node + ": the disc does not get ready") {}
};

/// A drive that is open here, and closed to everybody else. Destroying it unlocks the tray and lets
/// go of the drive; no operation of libburn may be under way then.
class GrabbedDrive {
public:
    /// Opens a drive. What cannot be had at once is tried again until the time is over, or the burn
    /// is stopped (`stop` may be null). Throws `BurnFailure`, and `DiscIsLoading` of that kind.
    GrabbedDrive(const DriveRecord& record, const DrivePatience& patience, const StopSignal* stop);
    ~GrabbedDrive();
    GrabbedDrive(const GrabbedDrive&) = delete;
    GrabbedDrive& operator=(const GrabbedDrive&) = delete;

    /// libburn's own drive; valid as long as this object.
    burn::burn_drive* handle() const { return _handle; }

    /// Whether there is a disc, as the kernel says, also while libburn is at work; true when it
    /// says nothing.
    bool hasDisc() const;

    /// Unlocks the tray and takes the drive away from libburn, which ends whatever that waits for,
    /// as if the drive had been unplugged.
    void abandon();

private:
    bool grab(const std::string& place);

    const std::string _node;
    burn::burn_drive_info* _found = nullptr;
    burn::burn_drive* _handle = nullptr;
    std::set<int> _descriptors; ///< libburn's, of this drive
    std::string _place;         ///< where they lead
};

/// Whether the system still has the drive, whatever state that is in.
bool isAttached(const DriveRecord& record);

} // namespace quarner
