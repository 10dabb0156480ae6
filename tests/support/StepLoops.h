// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "adapters/runloop/RunLoops.h"
#include "tests/support/TurnedLoops.h"

namespace quarner {

/// Run loops that a test turns by hand. In step, a thread that posts to another thread's loop waits
/// until the notification was delivered, so that a handler acts exactly when the record is sent.
class StepLoops : public RunLoops, public TurnedLoops {
public:
    std::shared_ptr<RunLoopCenter> currentCenter() override {
        const std::lock_guard lock(_mutex);
        std::shared_ptr<RunLoopCenter>& center = _centers[std::this_thread::get_id()];
        if (!center)
            center = std::make_shared<RunLoopCenter>(
                [this, thread = std::this_thread::get_id()] { wake(thread); });
        return center;
    }

    void postToAll(const DRNotification& notification) override {
        std::unique_lock lock(_mutex);
        const auto centers = _centers;
        lock.unlock();
        for (const auto& [thread, center] : centers)
            center->post(notification);
    }

    void setInStep(bool isInStep) override {
        const std::lock_guard lock(_mutex);
        _isInStep = isInStep;
        _isHeld = false;
        _changed.notify_all();
    }

    void holdSender() override {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [&] { return _waiting > 0; });
        _isHeld = true;
    }

    bool runUntil(const std::function<bool()>& condition) override {
        return runUntil(condition, std::chrono::minutes(1));
    }
    /// The same with another timeout.
    bool runUntil(const std::function<bool()>& condition, std::chrono::seconds limit) {
        const auto center = currentCenter();
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!condition() && std::chrono::steady_clock::now() < end)
            turn(*center);
        return condition();
    }

    void runPending() override {
        while (currentCenter()->deliverOne()) {
        }
    }

    void waitForPostAfter(const std::function<void()>& start) override {
        std::unique_lock lock(_mutex);
        const std::size_t before = _posts;
        lock.unlock();
        start();
        lock.lock();
        _changed.wait(lock, [&] { return _posts > before; });
    }

private:
    void turn(RunLoopCenter& center) {
        if (center.deliverOne())
            return;
        std::unique_lock lock(_mutex);
        _idle = true;
        _changed.notify_all();
        _changed.wait_for(lock, std::chrono::milliseconds(20), [&] { return _woken; });
        _woken = false;
        _idle = false;
    }

    void wake(std::thread::id loopThread) {
        std::unique_lock lock(_mutex);
        const bool isOtherThread = std::this_thread::get_id() != loopThread;
        _posts += isOtherThread ? 1 : 0;
        _woken = true;
        _idle = false;
        _changed.notify_all();
        if (isOtherThread && _isInStep && !_isHeld)
            waitForDelivery(lock);
    }

    void waitForDelivery(std::unique_lock<std::mutex>& lock) {
        ++_waiting;
        _changed.notify_all();
        _changed.wait(lock, [&] { return !_isInStep || (_idle && !_woken && !_isHeld); });
        --_waiting;
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    std::map<std::thread::id, std::shared_ptr<RunLoopCenter>> _centers;
    bool _isInStep = false;
    bool _isHeld = false;
    std::size_t _waiting = 0;
    bool _woken = false;
    bool _idle = false;
    std::size_t _posts = 0; ///< by threads other than the loop's
};

} // namespace quarner
