// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "adapters/scripted/Pulse.h"
#include "quarner/scripted/ScriptedQueue.h"

namespace quarner {

/// The main queue: work waits here until the main thread serves it, and its caller waits for
/// that.
class MainQueue : public ScriptedQueue {
public:
    explicit MainQueue(std::shared_ptr<Pulse> pulse);

    /// Puts work in the line and waits until it has run, or until the queue is closed before it
    /// has begun.
    void runAndWait(std::function<void()> work, bool isCallerInBackground);

    /// Runs the first piece of work that is not held back. False when there is none. Only on the
    /// main thread.
    bool serveOne();
    bool hasWork() const; ///< that is not held back

    /// How many threads of the background queue wait for work that is held back.
    std::size_t heldBackgroundCallers() const;

    /// Lets all callers go; work that has not begun is dropped, now and later.
    void close();

    void hold() override;
    void release() override;
    bool releaseOne(std::size_t place) override;
    std::size_t waiting() const override;

private:
    struct Item {
        std::function<void()> work;
        bool isCallerInBackground = false;
        bool isLetThrough = false;
        bool isBegun = false;
        bool isDone = false;
    };
    using ItemRef = std::shared_ptr<Item>;

    bool isHeldBack(const Item& item) const { return _isHeld && !item.isLetThrough; }
    ItemRef takeNext();

    const std::shared_ptr<Pulse> _pulse;
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    bool _isHeld = false;
    bool _isClosed = false;
    std::deque<ItemRef> _items;
};

} // namespace quarner
