// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace quarner {

/// Aborts the process, and with it the test, if it is not destroyed in time: for a test of
/// something that could wait for ever, on a thread that nobody could end then.
class Watchdog {
public:
    explicit Watchdog(std::chrono::milliseconds limit = std::chrono::milliseconds(2000))
        : _thread([this, limit] { watch(limit); }) {}
    ~Watchdog() {
        {
            const std::lock_guard lock(_mutex);
            _isOver = true;
        }
        _changed.notify_one();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void watch(std::chrono::milliseconds limit) {
        std::unique_lock lock(_mutex);
        if (_changed.wait_for(lock, limit, [this] { return _isOver; }))
            return;
        std::fputs("still waiting: ended by the watchdog\n", stderr);
        std::abort();
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isOver = false;
    std::jthread _thread; // the last member: it uses the others
};

} // namespace quarner
