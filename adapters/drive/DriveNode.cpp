// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DriveNode.h"

#include <fcntl.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "adapters/drive/AccessProblem.h"
#include "adapters/drive/DriveOpening.h"
#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

BurnFailure failureOf(const std::string& path, int error) {
    const std::string text = path + ": " + std::generic_category().message(error);
    switch (error) {
    case EACCES:
    case EPERM:
        return {DRError::DeviceNotPermitted, openingProblem(path, error)};
    case ENOENT:
    case ENXIO:
    case ENODEV:
        return {DRError::DeviceVanished, text};
    default:
        return {DRError::DeviceBusy, text};
    }
}

} // namespace

DriveNode::DriveNode(const std::string& path, std::chrono::milliseconds timeout,
                     const StopSignal* stop)
    : _descriptor(openDrive(path, timeout, stop)) {
    if (_descriptor < 0)
        throw BurnFailure(failureOf(path, -_descriptor));
}

DriveNode::~DriveNode() { close(_descriptor); }

int DriveNode::status() const { return ioctl(_descriptor, CDROM_DRIVE_STATUS, CDSL_CURRENT); }

bool DriveNode::isLoading() const { return status() == CDS_DRIVE_NOT_READY; }

bool DriveNode::isReady() const { return status() == CDS_DISC_OK; }

bool DriveNode::isTrayOpen() const { return status() == CDS_TRAY_OPEN; }

bool DriveNode::openTray() const {
    if (isTrayOpen() || !eject())
        return false;
    // A drive without a tray reports only that it has no disc.
    const int state = status();
    return state != CDS_DISC_OK && state != CDS_DRIVE_NOT_READY;
}

bool DriveNode::eject() const {
    ioctl(_descriptor, CDROM_LOCKDOOR, 0); // a program that died may have locked it
    // The system examines a new disc, also one that was just written, without opening the drive
    // exclusively. The kernel does not open the tray during that time.
    for (int retries = 20; ioctl(_descriptor, CDROMEJECT) != 0; --retries) {
        if (errno != EBUSY || retries == 0)
            return false;
        waitForDrive(nullptr);
    }
    return true;
}

bool DriveNode::canReload() const {
    constexpr int needed = CDC_OPEN_TRAY | CDC_CLOSE_TRAY;
    const int capabilities = ioctl(_descriptor, CDROM_GET_CAPABILITY);
    return capabilities >= 0 && (capabilities & needed) == needed;
}

bool DriveNode::reload() const { return eject() && ioctl(_descriptor, CDROMCLOSETRAY) == 0; }

} // namespace quarner
