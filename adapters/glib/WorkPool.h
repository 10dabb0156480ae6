// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace quarner {

/// Runs work on background threads. A thread lives while there is work, so an idle pool has no
/// threads. The threads keep the pool alive. Must be owned by a shared pointer.
class WorkPool : public std::enable_shared_from_this<WorkPool> {
public:
    using Work = std::function<void()>;

    /// Uses at most `limit` threads at a time.
    explicit WorkPool(std::size_t limit);

    /// Runs work as soon as a thread is free; drops it after `shutDown`. Any thread.
    void submit(Work work);

    /// Drops the work that has not begun and waits for running work to end. Does not wait if called
    /// from work of this pool.
    void shutDown();

private:
    void startThread();
    void workUntilNoneIsLeft();
    Work nextWork();

    const std::size_t _limit;
    std::mutex _mutex;
    std::condition_variable _isIdle;
    std::deque<Work> _waiting;
    std::size_t _threads = 0;
    bool _isShutDown = false;
};

} // namespace quarner
