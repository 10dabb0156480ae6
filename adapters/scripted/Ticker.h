// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace quarner {

/// Counts the events on a scripted platform and wakes the threads that wait for one. Any thread.
class Ticker {
public:
    /// Counts an event and wakes all waiting threads.
    void tick() {
        {
            const std::lock_guard lock(_mutex);
            ++_count;
        }
        _happened.notify_all();
    }

    std::uint64_t count() const {
        const std::lock_guard lock(_mutex);
        return _count;
    }

    /// Waits until an event has happened since the count was `counted`, or until `timeout`.
    void waitBeyond(std::uint64_t counted, std::chrono::milliseconds timeout) const {
        std::unique_lock lock(_mutex);
        _happened.wait_for(lock, timeout, [&] { return _count != counted; });
    }

private:
    mutable std::mutex _mutex;
    mutable std::condition_variable _happened;
    std::uint64_t _count = 0;
};

} // namespace quarner
