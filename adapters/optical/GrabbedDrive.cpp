// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/GrabbedDrive.h"

#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <mutex>
#include <utility>

#include "adapters/optical/BurnLibrary.h"
#include "adapters/optical/DriveNode.h"
#include "adapters/optical/DriveOpening.h"
#include "adapters/optical/Libburn.h"
#include "adapters/optical/NodeDescriptors.h"
#include "adapters/optical/SharedNode.h"

namespace quarner {
namespace {

/// Also returns the path of the node's file.
bool isLoading(const std::string& path, std::chrono::milliseconds timeout, const StopSignal* stop,
               std::string& nodePath) {
    const DriveNode node(path, timeout, stop);
    nodePath = NodeDescriptors::pathOf(node.descriptor());
    return node.isLoading();
}

} // namespace

GrabbedDrive::GrabbedDrive(const DriveRecord& record, const DriveTimeouts& timeout,
                           const StopSignal* stop)
    : _node(record.node) {
    using Clock = std::chrono::steady_clock;
    const auto loadingEnd = Clock::now() + timeout.loading;
    auto busyEnd = Clock::now() + timeout.busy;
    while (true) {
        std::string nodePath;
        if (isLoading(_node, timeout.busy, stop, nodePath)) {
            if (Clock::now() >= loadingEnd)
                throw DiscIsLoading(record.node);
            busyEnd = Clock::now() + timeout.busy;
        } else if (grab(nodePath)) {
            return;
        } else if (Clock::now() >= busyEnd) {
            throw BurnFailure(DRError::DeviceBusy, record.node + ": libburn cannot open it");
        }
        waitForDrive(stop);
    }
}

bool GrabbedDrive::grab(const std::string& nodePath) {
    BurnLibrary& library = BurnLibrary::shared();
    {
        const std::lock_guard lock(library.drives());
        if (!library.start())
            throw BurnFailure(DRError::Internal, "libburn cannot be started");
        const NodeDescriptors descriptors(nodePath);
        std::string address = library.untriedAddress(_node);
        if (address.empty())
            return false;
        if (burn::burn_drive_scan_and_grab(&_found, address.data(), 0) == 1) {
            _handle = _found->drive;
            _descriptors = descriptors.openedSince();
            _nodePath = nodePath;
            library.driveWasTaken();
        } else {
            burn::burn_drive_info_free(std::exchange(_found, nullptr));
            library.driveWasNotTaken(descriptors);
        }
    }
    library.logMessages();
    return _handle != nullptr;
}

GrabbedDrive::~GrabbedDrive() {
    BurnLibrary& library = BurnLibrary::shared();
    burn::burn_drive_release(_handle, 0); // slow; other drives do not wait for it
    {
        const std::lock_guard lock(library.drives());
        burn::burn_drive_info_free(_found);
        library.driveWasReleased();
    }
    library.logMessages();
}

bool GrabbedDrive::hasDisc() const {
    const SharedNode node(_node); // libburn's thread may close its own descriptor at any moment
    const int status = ioctl(node.descriptor(), CDROM_DRIVE_STATUS, CDSL_CURRENT);
    return status != CDS_NO_DISC && status != CDS_TRAY_OPEN;
}

void GrabbedDrive::abandon() {
    if (!replaceByEmptyFile(_descriptors, _nodePath))
        return;
    const SharedNode node(_node);
    ioctl(node.descriptor(), CDROM_LOCKDOOR, 0);
}

bool isAttached(const DriveRecord& record) {
    return access(record.node.c_str(), F_OK) == 0 &&
           (record.sysPath.empty() || access(record.sysPath.c_str(), F_OK) == 0);
}

} // namespace quarner
