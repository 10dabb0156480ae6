// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/worker/DriveRecord.h"

namespace burn {
struct burn_drive;
struct burn_drive_info;
} // namespace burn

namespace quarner {

/// The timeouts for opening a drive.
struct DriveTimeouts {
    std::chrono::milliseconds busy;    ///< while another program has it open
    std::chrono::milliseconds loading; ///< while it loads or examines a disc
};

/// The failure for a drive that is still loading or examining its disc.
class DiscIsLoading : public BurnFailure {
public:
    explicit DiscIsLoading(const std::string& node)
        : BurnFailure(DRError::MediaNotPresent, node + ": the disc does not get ready") {}
};

/// A drive that is open exclusively, the only one of this process. The destructor unlocks the tray
/// and releases the drive. No operation of libburn may be running then.
///
/// The node is first opened without libburn (`DriveNode`), which shows whether another program uses
/// the drive and whether it is loading a disc. Only a drive that is ready or empty is given to
/// libburn, whose waits have no timeout.
class GrabbedDrive {
public:
    /// Opens a drive. Retries until the timeouts or until the burn is stopped (`stop` may be null).
    /// Throws `BurnFailure`, or the derived `DiscIsLoading`; or `DriveNotTaken`: libburn then may
    /// have left the node open, so that only another process can try again.
    GrabbedDrive(const DriveRecord& record, const DriveTimeouts& timeout, const StopSignal* stop);
    ~GrabbedDrive();
    GrabbedDrive(const GrabbedDrive&) = delete;
    GrabbedDrive& operator=(const GrabbedDrive&) = delete;

    /// libburn's handle; valid as long as this object.
    burn::burn_drive* handle() const { return _handle; }

    /// Whether the kernel reports a disc, also while libburn works; true if it reports nothing.
    bool hasDisc() const;

    /// Unlocks the tray and gives the drive up without libburn, which waits for something that
    /// never comes. This process can use no drive any more.
    void abandon();
    /// Whether that has happened to any drive of this process.
    static bool isAnyAbandoned();

private:
    bool grab();

    const std::string _node;
    burn::burn_drive_info* _found = nullptr;
    burn::burn_drive* _handle = nullptr;
    bool _isAbandoned = false;
};

/// Unlocks the tray of a drive that another process has left locked.
void unlockTray(const std::string& path);

/// Returns whether the system still lists the drive, whatever its state.
bool isAttached(const DriveRecord& record);

} // namespace quarner
