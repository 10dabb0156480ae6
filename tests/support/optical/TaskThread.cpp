// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/TaskThread.h"

#include <utility>

namespace quarner {

TaskThread::~TaskThread() {
    {
        const std::lock_guard lock(_mutex);
        _isEnding = true;
    }
    _changed.notify_all();
    _thread.join();
}

void TaskThread::add(std::function<void()> task) {
    const std::lock_guard lock(_mutex);
    _tasks.push_back(std::move(task));
    _changed.notify_all();
}

void TaskThread::work() {
    std::unique_lock lock(_mutex);
    for (;;) {
        _changed.wait(lock, [&] { return _isEnding || !_tasks.empty(); });
        if (_tasks.empty())
            return;
        std::function<void()> task = std::move(_tasks.front());
        _tasks.pop_front();
        lock.unlock();
        task();
        task = nullptr; // what it owns may have a destructor that adds a task
        lock.lock();
    }
}

} // namespace quarner
