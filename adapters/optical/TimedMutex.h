// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quarner {

/// A mutex that a thread can wait for with a timeout, for `std::unique_lock`. In place of
/// `std::timed_mutex`, whose locking ThreadSanitizer does not see.
class TimedMutex {
public:
    bool try_lock_for(std::chrono::milliseconds most) {
        std::unique_lock lock(_mutex);
        if (!_unlocked.wait_for(lock, most, [this] { return !_isLocked; }))
            return false;
        _isLocked = true;
        return true;
    }
    void unlock() {
        const std::lock_guard lock(_mutex);
        _isLocked = false;
        _unlocked.notify_one();
    }

private:
    std::mutex _mutex;
    std::condition_variable _unlocked;
    bool _isLocked = false;
};

} // namespace quarner
