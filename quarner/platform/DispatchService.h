// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>

#include "quarner/platform/Export.h"

namespace quarner {

/// Runs work on other threads.
class QUARNER_EXPORT DispatchService {
public:
    DispatchService() = default;
    virtual ~DispatchService();
    DispatchService(const DispatchService&) = delete;
    DispatchService& operator=(const DispatchService&) = delete;

    /// Submits work to the global concurrent queue of default priority and returns at once. Work
    /// may start in any order and run at the same time as other work.
    virtual void asyncGlobal(std::function<void()> work) = 0;

    /// Runs work on the main thread and returns after it has run. On the main thread the work runs
    /// at once. If the main queue is shut down while the caller waits, the work is dropped and the
    /// call returns.
    virtual void syncMain(std::function<void()> work) = 0;

    /// Submits work to the main thread and returns at once, also on the main thread itself. What
    /// was submitted by this call runs in that order and one at a time: never inside other such
    /// work, not even in a loop that it runs. If the main queue is shut down before, the work is
    /// dropped. The work must not throw.
    virtual void asyncMain(std::function<void()> work) = 0;
};

} // namespace quarner
