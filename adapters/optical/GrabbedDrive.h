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

/// A drive that is open exclusively. The destructor unlocks the tray and releases the drive. No
/// operation of libburn may be running then.
///
/// The node is first opened without libburn (`DriveNode`), which shows whether another program uses
/// the drive and whether it is loading a disc. Only a drive that is ready or empty is given to
/// libburn, whose waits have no timeout.
///
/// Invariants: libburn's list of drives changes only under `BurnLibrary::drives`. `_descriptors`
/// are exactly those that libburn opened for this drive, so `abandon` can replace them while a
/// thread of libburn is blocked in the drive.
class GrabbedDrive {
public:
    /// Opens a drive. Retries until the timeouts or until the burn is stopped (`stop` may be null).
    /// Throws `BurnFailure`, or the derived `DiscIsLoading`.
    GrabbedDrive(const DriveRecord& record, const DriveTimeouts& timeout, const StopSignal* stop);
    ~GrabbedDrive();
    GrabbedDrive(const GrabbedDrive&) = delete;
    GrabbedDrive& operator=(const GrabbedDrive&) = delete;

    /// libburn's handle; valid as long as this object.
    burn::burn_drive* handle() const { return _handle; }

    /// Whether the kernel reports a disc, also while libburn works; true if it reports nothing.
    bool hasDisc() const;

    /// Unlocks the tray and replaces libburn's descriptors, which ends whatever libburn waits for
    /// as if the drive had been unplugged.
    void abandon();

private:
    bool grab(const std::string& nodePath);

    const std::string _node;
    burn::burn_drive_info* _found = nullptr;
    burn::burn_drive* _handle = nullptr;
    std::set<int> _descriptors; ///< libburn's descriptors of this drive
    std::string _nodePath;      ///< where they lead
};

/// Returns whether the system still lists the drive, whatever its state.
bool isAttached(const DriveRecord& record);

} // namespace quarner
