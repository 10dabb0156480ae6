// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "adapters/runloop/LoopSource.h"

namespace quarner {

/// Runs work on the thread of the main loop.
class MainThreadQueue {
public:
    /// The longest wait for the main loop after which the log says that it may not be running.
    static constexpr std::chrono::milliseconds usualWarnAfter{5000};

    explicit MainThreadQueue(const MakeLoopSource& makeSource,
                             std::chrono::milliseconds warnAfter = usualWarnAfter);
    /// Calls `shutDown`.
    ~MainThreadQueue();
    MainThreadQueue(const MainThreadQueue&) = delete;
    MainThreadQueue& operator=(const MainThreadQueue&) = delete;

    /// Runs work on the main thread. Returns after it has run, or was dropped by `shutDown`. Not on
    /// the main thread, which would wait for itself.
    void runAndWait(const std::function<void()>& work);

    /// Runs work on the main thread later, in order and one after the other: not in a loop that
    /// other such work runs. Any thread.
    void post(std::function<void()> work);

    /// Drops the work that has not begun, and later work.
    void shutDown();

private:
    struct Job;
    struct Jobs;

    const std::shared_ptr<Jobs> _jobs;
    const std::shared_ptr<LoopSource> _waitedFor;
    const std::shared_ptr<LoopSource> _posted;
};

} // namespace quarner
