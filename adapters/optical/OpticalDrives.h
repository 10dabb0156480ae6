// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/engine/DriveList.h"
#include "adapters/engine/ProgressMeter.h"
#include "adapters/optical/DriveMonitor.h"
#include "adapters/optical/OpticalDrive.h"
#include "adapters/optical/UdevDrives.h"

namespace quarner {

/// What tests replace.
struct OpticalDrivesParts {
    Clock clock = std::chrono::steady_clock::now;
    bool isUdevRunning = quarner::isUdevRunning();
};

/// The optical drives of the machine. Every operation may be called on any thread.
///
/// Drives are announced when udev announces them. If udev is not running and has sent no event so
/// far, every call of `devices` rescans and reports the drives that have come and gone since the
/// last scan.
///
/// If udev later reports a different name or write capability, the drive is removed and added again
/// as a new object; a drive that is burning only at the first event after the burn.
class OpticalDrives final : public DriveList, private DriveListener {
public:
    explicit OpticalDrives(std::shared_ptr<RunLoops> runLoops, OpticalDrivesParts parts = {});
    ~OpticalDrives() override;

    /// Lists the drives in the order of their device files. A drive's name is made from its vendor
    /// and product, and is unique.
    std::vector<std::shared_ptr<DRDevice>> devices() override;

    /// Whether drives that come and go, and changes of discs, are reported without calling
    /// `devices`.
    bool receivesEvents() const { return _receivesEvents; }

private:
    using Drive = std::shared_ptr<OpticalDrive>;

    void driveIsThere(const DriveRecord& record) override;
    void driveIsGone(const std::string& sysPath) override;
    void mediaChanged(const std::string& sysPath) override;
    void eventsWereLost() override;

    void rescan();
    void adopt(const DriveRecord& record);
    void attach(const DriveRecord& record);
    void detach(const Drive& drive);
    Drive driveAt(const std::string& sysPath);
    std::vector<Drive> drives();

    const Clock _clock;
    /// Held while the list is updated, so that notifications keep their order. Locked before
    /// `_mutex`.
    std::mutex _updating;
    std::mutex _mutex;
    std::vector<Drive> _drives;
    std::atomic<bool> _receivesEvents = false;
    DriveMonitor _monitor; // the last member: its thread, which uses the others, must end before
                           // they are destroyed
};

} // namespace quarner
