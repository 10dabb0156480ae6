// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/WorkPool.h"

#include <system_error>
#include <thread>
#include <utility>

namespace quarner {
namespace {

thread_local const WorkPool* poolOfThisThread = nullptr;

} // namespace

WorkPool::WorkPool(std::size_t limit) : _limit(limit) {}

void WorkPool::submit(Work work) {
    {
        const std::lock_guard lock(_mutex);
        if (_isShutDown)
            return;
        _waiting.push_back(std::move(work));
        if (_threads == _limit)
            return;
        ++_threads;
    }
    startThread();
}

void WorkPool::startThread() {
    try {
        std::thread([self = shared_from_this()] {
            poolOfThisThread = self.get();
            self->workUntilNoneIsLeft();
        }).detach();
    } catch (const std::system_error&) {
        workUntilNoneIsLeft(); // no thread can be started: the caller runs the work
    }
}

void WorkPool::workUntilNoneIsLeft() {
    while (const Work work = nextWork())
        work();
}

WorkPool::Work WorkPool::nextWork() {
    const std::lock_guard lock(_mutex);
    if (_waiting.empty()) {
        --_threads;
        _isIdle.notify_all();
        return nullptr;
    }
    Work work = std::move(_waiting.front());
    _waiting.pop_front();
    return work;
}

void WorkPool::shutDown() {
    std::deque<Work> dropped; // destroyed after the lock is released
    std::unique_lock lock(_mutex);
    _isShutDown = true;
    dropped.swap(_waiting);
    if (poolOfThisThread != this)
        _isIdle.wait(lock, [this] { return _threads == 0; });
}

} // namespace quarner
