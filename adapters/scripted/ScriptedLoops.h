// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "adapters/runloop/RunLoops.h"
#include "adapters/scripted/Ticker.h"

namespace quarner {

/// The run loops of a scripted platform: one for each thread that asks for its own.
class ScriptedLoops : public RunLoops {
public:
    explicit ScriptedLoops(std::shared_ptr<Ticker> ticker) : _ticker(std::move(ticker)) {}

    std::shared_ptr<RunLoopCenter> currentCenter() override;
    void postToAll(const DRNotification& notification) override;

    /// Releases all loops. Notifications posted afterwards are lost.
    void close();

private:
    struct Loop {
        std::weak_ptr<const void> thread; // lives as long as the thread
        std::shared_ptr<RunLoopCenter> center;
    };

    void forgetEndedThreads();

    const std::shared_ptr<Ticker> _ticker;
    std::mutex _mutex;
    std::vector<Loop> _loops;
    bool _isClosed = false;
};

} // namespace quarner
