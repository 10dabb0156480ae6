// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <mutex>
#include <thread>

#include "tools/quarner/host/EventLoop.h"

namespace quarner::cli {

/// Ctrl-C and the signals that ask a program to end. They are taken by a thread of their own, so
/// that they work even while the main loop is stuck in a slow file, and so that what they lead to
/// runs as ordinary code.
class Interruptions {
public:
    /// From now on the signals are blocked in the calling thread and in all that it starts: make
    /// this object before any other thread. `endAtOnce` is called on the signal thread when there
    /// is nothing to interrupt gently, or at the second signal; it should not return.
    Interruptions(EventLoop& loop, std::function<void()> endAtOnce);
    ~Interruptions();
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

    /// What the next signal runs, once, on the main loop; null for nothing.
    void setHandler(std::function<void()> handler);

private:
    void serve();
    void signalArrived();

    EventLoop& _loop;
    const std::function<void()> _endAtOnce;
    std::mutex _mutex;
    std::function<void()> _handler;
    bool _isOver = false;
    std::thread _thread;
};

} // namespace quarner::cli
