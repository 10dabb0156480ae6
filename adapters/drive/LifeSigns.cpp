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
/// still waits for.
bool responds(const std::string& path) {
    const SharedNode node(path);
    return ioctl(node.descriptor(), CDROM_DRIVE_STATUS, CDSL_CURRENT) >= 0;
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
