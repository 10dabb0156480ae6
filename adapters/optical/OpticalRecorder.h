// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/optical/DriveMonitor.h"
#include "adapters/optical/OpticalDrive.h"
#include "adapters/optical/UdevDrives.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// What tests put in the place of the machine.
struct OpticalRecorderParts {
    Clock clock = std::chrono::steady_clock::now;
    std::shared_ptr<DataDiscService> dataDiscs = nullptr; ///< null: audio discs only
    bool isUdevRunning = quarner::isUdevRunning();
};

/// The recorder of the machine's optical drives. Every operation may be called on any thread.
///
/// Drives are told of as udev tells of them. Where udev does not run, and nothing was heard of it
/// so far, `devices` looks afresh every time, and tells then what has come and gone since the last
/// look.
///
/// A drive of which more is found out later, its name or that it writes, disappears, and appears as
/// another object that tells it; a drive that is burning only once something is heard of it after
/// the burn.
class OpticalRecorder final : public EngineRecorder, private DriveListener {
public:
    OpticalRecorder(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<PCMService> pcm,
                    OpticalRecorderParts parts = {});
    /// Unplugs the drives: whoever still has one finds no disc in it.
    ~OpticalRecorder() override;

    /// In the order of their device files. A drive is named after its vendor and product, and
    /// unlike the other drives.
    std::vector<std::shared_ptr<DRDevice>> devices() override;

    /// Whether drives that come and go, and discs that are changed, are told of by themselves.
    bool hearsOfChanges() const { return _hearsOfChanges; }

private:
    using Drive = std::shared_ptr<OpticalDrive>;

    void driveIsThere(const DriveRecord& record) override;
    void driveIsGone(const std::string& sysPath) override;
    void mediaChanged(const std::string& sysPath) override;
    void eventsWereLost() override;

    void lookAfresh();
    void takeOver(const DriveRecord& record);
    void attach(const DriveRecord& record);
    void detach(const Drive& drive);
    Drive driveAt(const std::string& sysPath);
    std::vector<Drive> drives();
    std::string uniqueName(const DriveRecord& record) const;

    const Clock _clock;
    /// Held while the list is brought up to date, so that what is told keeps its order. Taken
    /// before `_mutex`.
    std::mutex _updating;
    std::mutex _mutex;
    std::vector<Drive> _drives;
    std::atomic<bool> _hearsOfChanges = false;
    DriveMonitor _monitor; // the last member: its thread ends before the others do
};

} // namespace quarner
