// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/GrabbedDrive.h"

#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <utility>

#include "adapters/drive/BurnLibrary.h"
#include "adapters/drive/DriveNode.h"
#include "adapters/drive/DriveOpening.h"
#include "adapters/drive/Libburn.h"
#include "adapters/drive/SharedNode.h"
#include "adapters/worker/DriveProtocol.h"

namespace quarner {
namespace {

bool isDriveAbandoned = false;

} // namespace

GrabbedDrive::GrabbedDrive(const DriveRecord& record, const DriveTimeouts& timeout,
                           const StopSignal* stop)
    : _node(record.node) {
    const auto end = std::chrono::steady_clock::now() + timeout.loading;
    while (DriveNode(_node, timeout.busy, stop).isLoading()) {
        if (std::chrono::steady_clock::now() >= end)
            throw DiscIsLoading(record.node);
        waitForDrive(stop);
    }
    if (!grab())
        throw DriveNotTaken(DRError::DeviceBusy, record.node + ": libburn cannot open it");
}

bool GrabbedDrive::grab() {
    BurnLibrary& library = BurnLibrary::shared();
    if (!library.start())
        throw BurnFailure(DRError::Internal, "libburn cannot be started");
    std::string address = _node;
    if (burn::burn_drive_scan_and_grab(&_found, address.data(), 0) == 1)
        _handle = _found->drive;
    else
        burn::burn_drive_info_free(std::exchange(_found, nullptr));
    library.logMessages();
    return _handle != nullptr;
}

GrabbedDrive::~GrabbedDrive() {
    if (_isAbandoned)
        return;
    burn::burn_drive_release(_handle, 0);
    burn::burn_drive_info_free(_found);
    BurnLibrary::shared().logMessages();
}

bool GrabbedDrive::hasDisc() const {
    const SharedNode node(_node); // libburn's thread may close its own descriptor at any moment
    const int status = ioctl(node.descriptor(), CDROM_DRIVE_STATUS, CDSL_CURRENT);
    return status != CDS_NO_DISC && status != CDS_TRAY_OPEN;
}

void GrabbedDrive::abandon() {
    _isAbandoned = isDriveAbandoned = true;
    unlockTray(_node);
}

bool GrabbedDrive::isAnyAbandoned() { return isDriveAbandoned; }

void unlockTray(const std::string& path) {
    const SharedNode node(path);
    ioctl(node.descriptor(), CDROM_LOCKDOOR, 0);
}

bool isAttached(const DriveRecord& record) {
    return access(record.node.c_str(), F_OK) == 0 &&
           (record.sysPath.empty() || access(record.sysPath.c_str(), F_OK) == 0);
}

} // namespace quarner
