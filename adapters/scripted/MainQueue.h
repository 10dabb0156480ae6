// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "adapters/scripted/Ticker.h"
#include "quarner/scripted/ScriptedQueue.h"

namespace quarner {

/// The main queue. Work waits until the main thread runs it, and so does its caller unless the work
/// is posted.
class MainQueue : public ScriptedQueue {
public:
    explicit MainQueue(std::shared_ptr<Ticker> ticker);

    /// Queues work. Returns after it has run, or once the queue is closed before it has begun.
    void runAndWait(std::function<void()> work, bool isCallerInBackground);

    /// Queues work and returns at once. Posted work runs in order, and not inside other posted
    /// work.
    void post(std::function<void()> work);

    /// Runs the first item that is not held. Returns false if there is none. Main thread only.
    bool serveOne();
    bool hasWork() const; ///< whether an item is not held

    /// The number of background threads that wait for held work.
    std::size_t heldBackgroundCallers() const;

    /// Wakes all callers and drops all work that has not begun, now and later.
    void close();

    void hold() override;
    void release() override;
    bool releaseOne(std::size_t place) override;
    std::size_t waiting() const override;

private:
    struct Item {
        std::function<void()> work;
        bool isCallerInBackground = false;
        bool isPosted = false;
        bool isLetThrough = false;
        bool isBegun = false;
        bool isDone = false;
    };
    using ItemRef = std::shared_ptr<Item>;

    bool isHeldBack(const Item& item) const { return _isHeld && !item.isLetThrough; }
    bool mayRun(const Item& item) const {
        return !isHeldBack(item) && !(item.isPosted && _isRunningPosted);
    }
    ItemRef takeNext();
    void finish(const ItemRef& item);

    const std::shared_ptr<Ticker> _ticker;
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    bool _isHeld = false;
    bool _isClosed = false;
    bool _isRunningPosted = false;
    std::deque<ItemRef> _items;
};

} // namespace quarner
