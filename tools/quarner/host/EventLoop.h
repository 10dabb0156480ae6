// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace quarner::cli {

/// Thrown out of `EventLoop::run` when the program has to end without waiting for anything.
struct EndedAtOnce : std::exception {
    const char* what() const noexcept override { return "ended at once"; }
};

/// The main loop of the program: a GMainLoop on the default context, which also delivers what the
/// framework sends, and a queue through which other threads hand work to it.
class EventLoop {
public:
    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Runs work on the loop's thread, after everything that was posted before. Any thread.
    void post(std::function<void()> work);

    /// Runs until `quit`. Work that is posted later, or left when `quit` comes, waits for the next
    /// `run` and is dropped when there is none. Throws what the work throws. Only on the thread
    /// that made the loop.
    void run();
    /// Ends the `run` under way. Only from within it.
    void quit();

private:
    struct Source;

    void runOne();
    std::function<void()> take();

    std::unique_ptr<Source> _source;
    std::mutex _mutex;
    std::deque<std::function<void()>> _queue;
    std::exception_ptr _failure; // of the loop's thread alone
};

} // namespace quarner::cli
