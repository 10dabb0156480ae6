// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "adapters/worker/Channel.h"

namespace quarner {

/// Tells the library once a second that the drive responds, while it does something that takes
/// minutes and cannot be stopped. The thread waits for ever where the drive does not respond.
class LifeSigns {
public:
    /// `channel` must outlive this object.
    LifeSigns(const Channel& channel, std::string node);
    ~LifeSigns();
    LifeSigns(const LifeSigns&) = delete;
    LifeSigns& operator=(const LifeSigns&) = delete;

private:
    void tell();

    const Channel& _channel;
    const std::string _node;
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isOver = false;
    std::thread _thread;
};

} // namespace quarner
