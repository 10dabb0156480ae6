// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/DriveMonitor.h"

#include <libudev.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/optical/UdevDrives.h"

namespace quarner {
namespace {

using Device = std::unique_ptr<udev_device, decltype(&udev_device_unref)>;

/// The receive buffer. The default is too small for a second of frequent plugging.
constexpr int receiveBytes = 8 * 1024 * 1024;

std::string_view text(const char* found) { return found == nullptr ? std::string_view() : found; }

bool isMediaChange(udev_device* device) {
    return text(udev_device_get_property_value(device, "DISK_MEDIA_CHANGE")) == "1";
}

void tellOf(udev_device* device, DriveListener& listener) {
    const std::string sysPath(text(udev_device_get_syspath(device)));
    if (text(udev_device_get_action(device)) == "remove") {
        listener.driveIsGone(sysPath); // nothing else of a removed device is reliable
        return;
    }
    const std::optional<DriveRecord> record = driveRecordOf(device);
    if (!record)
        return;
    listener.driveIsThere(*record);
    if (isMediaChange(device))
        listener.mediaChanged(sysPath);
}

} // namespace

DriveListener::~DriveListener() = default;

/// The connection to udev, and a way to wake the thread that waits on it.
struct DriveMonitor::Socket {
    Socket() {
        if (monitor == nullptr)
            return;
        udev_monitor_filter_add_match_subsystem_devtype(monitor, "block", "disk");
        udev_monitor_set_receive_buffer_size(monitor, receiveBytes);
        isReady = wake >= 0 && udev_monitor_enable_receiving(monitor) >= 0;
    }
    ~Socket() {
        udev_monitor_unref(monitor);
        udev_unref(context);
        if (wake >= 0)
            close(wake);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    udev* const context = udev_new();
    udev_monitor* const monitor =
        context == nullptr ? nullptr : udev_monitor_new_from_netlink(context, "udev");
    const int wake = eventfd(0, EFD_CLOEXEC);
    bool isReady = false;
};

DriveMonitor::DriveMonitor() : _socket(std::make_unique<Socket>()) {}

DriveMonitor::~DriveMonitor() {
    if (!_thread.joinable())
        return;
    eventfd_write(_socket->wake, 1);
    _thread.join();
}

bool DriveMonitor::start(DriveListener& listener) {
    if (!_socket->isReady)
        return false;
    try {
        _thread = std::thread([this, &listener] { listen(listener); });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void DriveMonitor::listen(DriveListener& listener) const {
    std::array<pollfd, 2> waiting = {
        {{_socket->wake, POLLIN, 0}, {udev_monitor_get_fd(_socket->monitor), POLLIN, 0}}};
    bool areEventsLost = false;
    while (waiting[0].revents == 0 && (waiting[1].revents & (POLLHUP | POLLNVAL)) == 0) {
        if (waiting[1].revents != 0 && !tellNext(listener))
            areEventsLost = true;
        const int ready = poll(waiting.data(), waiting.size(), areEventsLost ? 0 : -1);
        if (ready < 0 && errno != EINTR)
            return;
        // Report the loss only after the events that did arrive, so that the scan is newer than
        // they are.
        if (ready == 0 && std::exchange(areEventsLost, false))
            listener.eventsWereLost();
    }
}

bool DriveMonitor::tellNext(DriveListener& listener) const {
    errno = 0;
    const Device device(udev_monitor_receive_device(_socket->monitor), udev_device_unref);
    if (!device)
        return errno != ENOBUFS;
    tellOf(device.get(), listener);
    return true;
}

} // namespace quarner
