// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/runloop/RunLoopCenter.h"

namespace quarner {

/// The run loops of a process.
class RunLoops {
public:
    RunLoops() = default;
    virtual ~RunLoops();
    RunLoops(const RunLoops&) = delete;
    RunLoops& operator=(const RunLoops&) = delete;

    /// Returns the centre of the calling thread's current run loop. Each run loop has one centre,
    /// made by the first call and kept alive until the loop ends.
    virtual std::shared_ptr<RunLoopCenter> currentCenter() = 0;

    /// Posts a notification to every centre. Any thread.
    virtual void postToAll(const DRNotification& notification) = 0;
};

} // namespace quarner
