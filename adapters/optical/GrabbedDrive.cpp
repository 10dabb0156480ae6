// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/GrabbedDrive.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/optical/AccessProblem.h"
#include "adapters/optical/BurnLibrary.h"
#include "adapters/optical/Libburn.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds retryInterval{100};

/// The error of opening a drive as libburn does, which does not tell its reasons; 0 when it opens,
/// and the place of its file then.
int openingError(const std::string& node, std::string& place) {
    const int descriptor = open(node.c_str(), O_RDWR | O_NONBLOCK | O_EXCL | O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    place = LeftDescriptors::placeOf(descriptor);
    close(descriptor);
    return 0;
}

BurnFailure failureOf(const std::string& node, int error) {
    const std::string text = node + ": " + std::generic_category().message(error);
    switch (error) {
    case EACCES:
    case EPERM:
        return {DRError::DeviceNotPermitted, accessProblem(node).value_or(text)};
    case ENOENT:
    case ENXIO:
    case ENODEV:
        return {DRError::DeviceVanished, text};
    default:
        return {DRError::DeviceBusy, text};
    }
}

void wait(std::chrono::milliseconds time, const StopSignal* stop) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, stop ? stop->token() : std::stop_token(), time, [] { return false; });
    if (stop)
        stop->throwIfRequested();
}

} // namespace

GrabbedDrive::GrabbedDrive(const DriveRecord& record, std::chrono::milliseconds patience,
                           const StopSignal* stop) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (true) {
        std::string place;
        const int error = openingError(record.node, place);
        if (error == 0 && grab(record.node, place))
            return;
        const BurnFailure failure = failureOf(record.node, error == 0 ? EBUSY : error);
        if (failure.error() != DRError::DeviceBusy || std::chrono::steady_clock::now() >= end)
            throw BurnFailure(failure);
        wait(retryInterval, stop);
    }
}

bool GrabbedDrive::grab(const std::string& node, const std::string& place) {
    BurnLibrary& library = BurnLibrary::shared();
    {
        const std::lock_guard lock(library.drives());
        const LeftDescriptors left(place);
        std::string address = node;
        if (burn::burn_drive_scan_and_grab(&_found, address.data(), 0) == 1) {
            _handle = _found->drive;
            library.driveWasTaken();
        } else {
            burn::burn_drive_info_free(std::exchange(_found, nullptr));
            library.driveWasNotTaken(left);
        }
    }
    library.logMessages();
    return _handle != nullptr;
}

GrabbedDrive::~GrabbedDrive() {
    BurnLibrary& library = BurnLibrary::shared();
    {
        const std::lock_guard lock(library.drives());
        burn::burn_drive_release(_handle, _ejects ? 1 : 0);
        burn::burn_drive_info_free(_found);
        library.driveWasReleased();
    }
    library.logMessages();
}

bool isAttached(const DriveRecord& record) {
    return access(record.node.c_str(), F_OK) == 0 &&
           (record.sysPath.empty() || access(record.sysPath.c_str(), F_OK) == 0);
}

} // namespace quarner
