// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "adapters/scripted/Ticker.h"
#include "quarner/scripted/ScriptedQueue.h"

namespace quarner {

/// The concurrent queue: every item of work runs on its own thread.
class BackgroundQueue : public ScriptedQueue {
public:
    explicit BackgroundQueue(std::shared_ptr<Ticker> ticker);
    ~BackgroundQueue() override;

    void submit(std::function<void()> work);
    std::size_t running() const;

    /// Drops the work that has not begun, rejects new work, and waits for running work to end.
    void close();

    /// Whether the calling thread is running work of a `BackgroundQueue`.
    static bool isOnItsThread();

    void hold() override;
    void release() override;
    bool releaseOne(std::size_t place) override;
    std::size_t waiting() const override;

private:
    struct Worker {
        std::thread thread;
        std::shared_ptr<std::atomic<bool>> hasEnded;
    };

    void start(std::function<void()> work); // these two under the lock
    void joinEnded();
    void run(std::function<void()> work);

    const std::shared_ptr<Ticker> _ticker;
    mutable std::mutex _mutex;
    bool _isHeld = false;
    bool _isClosed = false;
    std::deque<std::function<void()>> _waiting;
    std::vector<Worker> _workers;
    std::size_t _running = 0;
};

} // namespace quarner
