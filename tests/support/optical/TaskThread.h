// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace quarner {

/// Calls functions one after the other on a thread of its own. `add` may be called on any thread.
class TaskThread {
public:
    TaskThread() = default;
    /// Returns after every function has returned. Not on its own thread.
    ~TaskThread();
    TaskThread(const TaskThread&) = delete;
    TaskThread& operator=(const TaskThread&) = delete;

    void add(std::function<void()> task);

private:
    void work();

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<std::function<void()>> _tasks;
    bool _isEnding = false;
    std::thread _thread{[this] { work(); }}; ///< the last member: it uses the others
};

} // namespace quarner
