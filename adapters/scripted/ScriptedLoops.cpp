// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedLoops.h"

namespace quarner {
namespace {

// A thread's id is reused after its end; the address of a live object is not.
const std::shared_ptr<const void>& currentThread() {
    static thread_local const std::shared_ptr<const void> identity = std::make_shared<char>();
    return identity;
}

} // namespace

std::shared_ptr<RunLoopCenter> ScriptedLoops::currentCenter() {
    const std::shared_ptr<const void>& thread = currentThread();
    const std::lock_guard lock(_mutex);
    for (const Loop& loop : _loops)
        if (loop.thread.lock() == thread)
            return loop.center;
    auto center = std::make_shared<RunLoopCenter>([ticker = _ticker] { ticker->tick(); });
    _loops.push_back({thread, center});
    return center;
}

void ScriptedLoops::postToAll(const DRNotification& notification) {
    std::vector<Loop> loops;
    {
        const std::lock_guard lock(_mutex);
        if (_isClosed)
            return;
        forgetEndedThreads();
        loops = _loops;
    }
    for (const Loop& loop : loops)
        loop.center->post(notification);
}

void ScriptedLoops::close() {
    std::vector<Loop> closed; // destroyed after the lock
    const std::lock_guard lock(_mutex);
    _isClosed = true;
    closed.swap(_loops);
}

void ScriptedLoops::forgetEndedThreads() {
    std::erase_if(_loops, [](const Loop& loop) { return loop.thread.expired(); });
}

} // namespace quarner
