// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace quarner::testing {

/// A main loop as a host may have one that uses none of a library: a queue and a condition.
class HandMadeLoop {
public:
    /// Queues work for the thread that turns the loop. Any thread.
    void post(std::function<void()> work) {
        const std::lock_guard lock(_mutex);
        _queue.push_back(std::move(work));
        _hasWork.notify_one();
    }

    /// Runs the oldest work. Returns false if there is none for a moment.
    bool turn() {
        std::unique_lock lock(_mutex);
        if (!_hasWork.wait_for(lock, std::chrono::milliseconds(2), [&] { return !_queue.empty(); }))
            return false;
        const std::function<void()> work = std::move(_queue.front());
        _queue.pop_front();
        lock.unlock();
        work();
        return true;
    }

    /// Turns the loop until a condition is true. Returns false after a minute.
    bool turnUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            turn();
        }
        return true;
    }

    std::size_t waiting() const {
        const std::lock_guard lock(_mutex);
        return _queue.size();
    }

private:
    mutable std::mutex _mutex;
    std::condition_variable _hasWork;
    std::deque<std::function<void()>> _queue;
};

} // namespace quarner::testing
