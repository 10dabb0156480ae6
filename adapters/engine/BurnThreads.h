// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// The burn threads of one recorder.
class BurnThreads {
public:
    BurnThreads() = default;
    ~BurnThreads();
    BurnThreads(const BurnThreads&) = delete;
    BurnThreads& operator=(const BurnThreads&) = delete;

    /// Runs work on a new thread. Returns false, without running it, after `shutDown` or if no
    /// thread can be started. Any thread.
    bool run(std::function<void()> work, std::shared_ptr<StopSignal> stop);

    /// Cancels the running burns and returns after their threads have ended. No burn can be started
    /// afterwards. Not on a burn thread.
    void shutDown();

private:
    struct Entry {
        std::shared_ptr<StopSignal> stop;
        bool hasEnded = false;
        std::jthread thread; // the last member: joined before the flag, which its thread writes, is
                             // destroyed
    };
    using Entries = std::list<Entry>;

    Entries removeEnded();

    std::mutex _mutex;
    Entries _entries;
    bool _isShutDown = false;
};

} // namespace quarner
