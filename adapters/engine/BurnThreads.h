// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// The threads of the burns of one recorder.
class BurnThreads {
public:
    BurnThreads() = default;
    ~BurnThreads();
    BurnThreads(const BurnThreads&) = delete;
    BurnThreads& operator=(const BurnThreads&) = delete;

    /// Runs work on a thread of its own. Answers false, without running it, after `shutDown` or
    /// when no thread can be had. Any thread.
    bool run(std::function<void()> work, std::shared_ptr<StopSignal> stop);

    /// Cancels the burns that are under way, returns when their threads have ended, and starts
    /// none any more. Not on a burn's thread.
    void shutDown();

private:
    struct Entry {
        std::shared_ptr<StopSignal> stop;
        bool isOver = false;
        std::jthread thread; // the last member: it still writes the flag while it is joined
    };
    using Entries = std::list<Entry>;

    Entries takeOver();

    std::mutex _mutex;
    Entries _entries;
    bool _isShutDown = false;
};

} // namespace quarner
