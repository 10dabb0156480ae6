// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/LifeSigns.h"

#include <linux/cdrom.h>
#include <sys/ioctl.h>

#include <chrono>
#include <utility>

#include "adapters/drive/SharedNode.h"
#include "adapters/worker/DriveProtocol.h"

namespace quarner {
namespace {

/// Whether the drive replies. The node of one that was unplugged cannot be opened, whatever libburn
/// still waits for. The kernel returns a status also if its own question timed out.
bool responds(const std::string& path) {
    constexpr std::chrono::seconds most{5};
    const auto begin = std::chrono::steady_clock::now();
    const SharedNode node(path);
    return ioctl(node.descriptor(), CDROM_DRIVE_STATUS, CDSL_CURRENT) >= 0 &&
           std::chrono::steady_clock::now() - begin < most;
}

} // namespace

LifeSigns::LifeSigns(const Channel& channel, std::string node)
    : _channel(channel), _node(std::move(node)), _thread([this] { tell(); }) {}

LifeSigns::~LifeSigns() {
    {
        const std::lock_guard lock(_mutex);
        _isOver = true;
    }
    _changed.notify_all();
    _thread.join();
}

void LifeSigns::tell() {
    constexpr std::chrono::seconds interval{1};
    std::unique_lock lock(_mutex);
    while (!_changed.wait_for(lock, interval, [this] { return _isOver; })) {
        lock.unlock();
        if (responds(_node))
            _channel.send({drive::alive});
        lock.lock();
    }
}

} // namespace quarner
