// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace quarner {

class WakeSource;

/// Runs work on the thread that runs the loop of the default GMainContext.
class GlibMainQueue {
public:
    /// The calling thread is taken as the main thread.
    GlibMainQueue();
    /// Calls `shutDown`.
    ~GlibMainQueue();
    GlibMainQueue(const GlibMainQueue&) = delete;
    GlibMainQueue& operator=(const GlibMainQueue&) = delete;

    /// Runs work on the main thread. Returns after it has run, or was dropped by `shutDown`. Any
    /// thread; on the main thread the work runs at once.
    void runAndWait(const std::function<void()>& work);

    /// Drops the work that has not begun, and later work from other threads.
    void shutDown();

private:
    struct Job;
    struct Jobs;

    bool isMainThread() const;

    const std::thread::id _makerThread;
    const std::shared_ptr<Jobs> _jobs;
    const std::shared_ptr<WakeSource> _source;
};

} // namespace quarner
