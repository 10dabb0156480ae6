// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>

namespace quarner::cli {

/// Thrown out of `EventLoop::runUntil` when the program has to end without waiting for anything.
struct EndedAtOnce {};

/// The main loop of the program: GLib's default context, on which the library reports too.
class EventLoop {
public:
    /// Runs work on the main loop, after everything that was posted before. It must not throw. Any
    /// thread.
    void post(std::function<void()> work);

    /// Lets the `runUntil` under way, or the next one, throw `EndedAtOnce`. Any thread.
    void endAtOnce();

    /// Turns the loop until a condition holds, which is asked for at first and after each event.
    void runUntil(const std::function<bool()>& isOver);

private:
    std::function<void()> take();

    std::atomic<bool> _isEnding = false;
    std::mutex _mutex;
    std::deque<std::function<void()>> _queue;
};

} // namespace quarner::cli
