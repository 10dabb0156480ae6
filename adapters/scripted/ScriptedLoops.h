// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "adapters/runloop/RunLoopCenter.h"
#include "adapters/scripted/Pulse.h"

namespace quarner {

/// The run loops of a scripted platform, one for each thread that asks.
class ScriptedLoops : public RunLoops {
public:
    explicit ScriptedLoops(std::shared_ptr<Pulse> pulse) : _pulse(std::move(pulse)) {}

    std::shared_ptr<RunLoopCenter> currentCenter() override;
    void postToAll(const DRNotification& notification) override;

    /// Lets go of all loops; what is posted from now on is lost.
    void close();

private:
    struct Loop {
        std::weak_ptr<const void> thread; // lives as long as the thread
        std::shared_ptr<RunLoopCenter> center;
    };

    void forgetEndedThreads();

    const std::shared_ptr<Pulse> _pulse;
    std::mutex _mutex;
    std::vector<Loop> _loops;
    bool _isClosed = false;
};

} // namespace quarner
