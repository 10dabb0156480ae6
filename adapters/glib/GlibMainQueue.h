// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace quarner {

class WakeSource;

/// Work for the thread that runs the loop of the default GMainContext.
class GlibMainQueue {
public:
    /// The calling thread counts as the main thread.
    GlibMainQueue();
    /// As `shutDown`.
    ~GlibMainQueue();
    GlibMainQueue(const GlibMainQueue&) = delete;
    GlibMainQueue& operator=(const GlibMainQueue&) = delete;

    /// Runs work on the main thread and returns when it has run, or was dropped by `shutDown`.
    /// Any thread; at once on the main thread.
    void runAndWait(const std::function<void()>& work);

    /// Drops the work that has not begun, and all that comes later from other threads.
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
