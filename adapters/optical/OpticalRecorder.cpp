// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/OpticalRecorder.h"

#include <algorithm>
#include <utility>

#include "adapters/engine/Utf8.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

std::string nameOf(const DriveRecord& record) {
    const bool hasBoth = !record.vendor.empty() && !record.product.empty();
    const std::string name = record.vendor + (hasBoth ? " " : "") + record.product;
    return name.empty() ? record.node.substr(record.node.rfind('/') + 1) : readableName(name);
}

/// Returns whether a record has new information about a known drive. Missing information is
/// ignored: udev leaves out what it cannot read from a busy drive, and nearly everything when the
/// eject button is pressed.
bool hasNewInformation(const DriveRecord& record, const DriveRecord& known) {
    const bool hasName = !record.vendor.empty() || !record.product.empty();
    return (record.canWriteCD && !known.canWriteCD) || (hasName && nameOf(record) != nameOf(known));
}

} // namespace

OpticalRecorder::OpticalRecorder(std::shared_ptr<RunLoops> runLoops,
                                 std::shared_ptr<PCMService> pcm, OpticalRecorderParts parts)
    : EngineRecorder(std::move(runLoops), std::move(pcm), std::move(parts.dataDiscs), parts.clock),
      _clock(std::move(parts.clock)) {
    const std::lock_guard lock(_updating); // the monitor's thread waits until the drives are listed
    _receivesEvents = _monitor.start(*this) && parts.isUdevRunning;
    for (const DriveRecord& record : listDrives())
        attach(record);
}

OpticalRecorder::~OpticalRecorder() {
    endBurns(); // cancelled, rather than failed for want of a drive
    for (const Drive& drive : drives())
        drive->unplug();
}

std::vector<std::shared_ptr<DRDevice>> OpticalRecorder::devices() {
    if (!_receivesEvents)
        rescan();
    const std::lock_guard lock(_mutex);
    return {_drives.begin(), _drives.end()};
}

void OpticalRecorder::driveIsThere(const DriveRecord& record) {
    const std::lock_guard lock(_updating);
    _receivesEvents = true; // first, so that the drive attached now expects reports of its changes
    adopt(record);
}

void OpticalRecorder::driveIsGone(const std::string& sysPath) {
    const std::lock_guard lock(_updating);
    if (const Drive drive = driveAt(sysPath))
        detach(drive);
}

void OpticalRecorder::mediaChanged(const std::string& sysPath) {
    if (const Drive drive = driveAt(sysPath))
        drive->mediaChanged();
}

void OpticalRecorder::eventsWereLost() {
    const std::vector<Drive> before = drives();
    rescan();
    for (const Drive& drive : drives())
        if (std::find(before.begin(), before.end(), drive) != before.end())
            drive->mediaChanged(); // one of the lost events may have been about its disc
}

void OpticalRecorder::rescan() {
    const std::lock_guard lock(_updating);
    const std::vector<DriveRecord> found = listDrives();
    for (const Drive& drive : drives())
        if (std::none_of(found.begin(), found.end(), [&](const DriveRecord& record) {
                return record.sysPath == drive->record().sysPath;
            }))
            detach(drive);
    for (const DriveRecord& record : found)
        adopt(record);
}

void OpticalRecorder::adopt(const DriveRecord& record) {
    const Drive known = driveAt(record.sysPath);
    if (known && (!hasNewInformation(record, known->record()) || !known->unplugUnlessBurning()))
        return;
    if (known)
        detach(known);
    attach(record);
}

void OpticalRecorder::attach(const DriveRecord& record) {
    Drive drive;
    {
        const std::lock_guard lock(_mutex);
        drive = std::make_shared<OpticalDrive>(record, uniqueName(record), runLoops(),
                                               _receivesEvents, _clock);
        const auto place = std::upper_bound(
            _drives.begin(), _drives.end(), record,
            [](const DriveRecord& a, const Drive& b) { return comesBefore(a, b->record()); });
        _drives.insert(place, drive);
    }
    notify(DRDeviceAppearedNotification, drive);
}

void OpticalRecorder::detach(const Drive& drive) {
    {
        const std::lock_guard lock(_mutex);
        std::erase(_drives, drive);
    }
    drive->unplug();
    notify(DRDeviceDisappearedNotification, drive);
}

OpticalRecorder::Drive OpticalRecorder::driveAt(const std::string& sysPath) {
    const std::lock_guard lock(_mutex);
    const auto found = std::find_if(_drives.begin(), _drives.end(), [&](const Drive& drive) {
        return drive->record().sysPath == sysPath;
    });
    return found == _drives.end() ? nullptr : *found;
}

std::vector<OpticalRecorder::Drive> OpticalRecorder::drives() {
    const std::lock_guard lock(_mutex);
    return _drives;
}

std::string OpticalRecorder::uniqueName(const DriveRecord& record) const {
    return uniqueDriveName(nameOf(record), [this](const std::string& name) {
        return std::any_of(_drives.begin(), _drives.end(),
                           [&](const Drive& drive) { return drive->displayName() == name; });
    });
}

} // namespace quarner
