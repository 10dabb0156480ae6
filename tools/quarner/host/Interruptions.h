// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "tools/quarner/host/EventLoop.h"

namespace quarner::cli {

/// Ctrl-C and the signals that ask a program to end; those that the program was started to ignore
/// are ignored. They are taken by a thread of their own, so that they work even while the main loop
/// is stuck in a slow file, and so that what they lead to runs as ordinary code.
class Interruptions {
public:
    /// How long ending at once may take.
    static constexpr std::chrono::milliseconds exitTimeout{1500};

    /// Blocks the signals in the calling thread: one that comes is kept until an object of this
    /// class is there to serve it.
    static void blockSignals();

    /// From now on the signals are blocked in the calling thread and in all that it starts: make
    /// this object before any other thread. `exitNow` ends the process; it is called on the signal
    /// thread when this object is still there `exitTimeout` after the loop was told to end at once.
    Interruptions(EventLoop& loop, std::function<void()> exitNow);
    ~Interruptions();
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

    /// What the next signal runs, once, on the main loop. Without one (null), and so at the second
    /// signal, the main loop throws `EndedAtOnce`.
    void setHandler(std::function<void()> handler);

private:
    void serve();
    void signalArrived();

    EventLoop& _loop;
    const std::function<void()> _exitNow;
    std::mutex _mutex;
    std::condition_variable _over;
    std::function<void()> _handler;
    bool _isOver = false;
    std::thread _thread;
};

} // namespace quarner::cli
