// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/OpticalDrives.h"

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

OpticalDrives::OpticalDrives(std::shared_ptr<RunLoops> runLoops, OpticalDrivesParts parts)
    : DriveList(std::move(runLoops)), _clock(std::move(parts.clock)) {
    const std::lock_guard lock(_updating); // the monitor's thread waits until the drives are listed
    _receivesEvents = _monitor.start(*this) && parts.isUdevRunning;
    for (const DriveRecord& record : listDrives())
        attach(record);
}

OpticalDrives::~OpticalDrives() {
    for (const Drive& drive : drives())
        drive->unplug();
}

std::vector<std::shared_ptr<DRDevice>> OpticalDrives::devices() {
    if (!_receivesEvents)
        rescan();
    const std::lock_guard lock(_mutex);
    return {_drives.begin(), _drives.end()};
}

void OpticalDrives::driveIsThere(const DriveRecord& record) {
    const std::lock_guard lock(_updating);
    _receivesEvents = true; // first, so that the drive attached now expects reports of its changes
    adopt(record);
}

void OpticalDrives::driveIsGone(const std::string& sysPath) {
    const std::lock_guard lock(_updating);
    if (const Drive drive = driveAt(sysPath))
        detach(drive);
}

void OpticalDrives::mediaChanged(const std::string& sysPath) {
    if (const Drive drive = driveAt(sysPath))
        drive->mediaChanged();
}

void OpticalDrives::eventsWereLost() {
    const std::vector<Drive> before = drives();
    rescan();
    for (const Drive& drive : drives())
        if (std::find(before.begin(), before.end(), drive) != before.end())
            drive->mediaChanged(); // one of the lost events may have been about its disc
}

void OpticalDrives::rescan() {
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

void OpticalDrives::adopt(const DriveRecord& record) {
    const Drive known = driveAt(record.sysPath);
    if (known && (!hasNewInformation(record, known->record()) || !known->unplugUnlessBurning()))
        return;
    if (known)
        detach(known);
    attach(record);
}

void OpticalDrives::attach(const DriveRecord& record) {
    Drive drive;
    {
        const std::lock_guard lock(_mutex);
        const std::string name = uniqueDriveName(nameOf(record), {_drives.begin(), _drives.end()});
        drive = std::make_shared<OpticalDrive>(record, name, runLoops(), _receivesEvents, _clock);
        const auto place = std::upper_bound(
            _drives.begin(), _drives.end(), record,
            [](const DriveRecord& a, const Drive& b) { return comesBefore(a, b->record()); });
        _drives.insert(place, drive);
    }
    notify(DRDeviceAppearedNotification, drive);
}

void OpticalDrives::detach(const Drive& drive) {
    {
        const std::lock_guard lock(_mutex);
        std::erase(_drives, drive);
    }
    drive->unplug();
    notify(DRDeviceDisappearedNotification, drive);
}

OpticalDrives::Drive OpticalDrives::driveAt(const std::string& sysPath) {
    const std::lock_guard lock(_mutex);
    const auto found = std::find_if(_drives.begin(), _drives.end(), [&](const Drive& drive) {
        return drive->record().sysPath == sysPath;
    });
    return found == _drives.end() ? nullptr : *found;
}

std::vector<OpticalDrives::Drive> OpticalDrives::drives() {
    const std::lock_guard lock(_mutex);
    return _drives;
}

} // namespace quarner
