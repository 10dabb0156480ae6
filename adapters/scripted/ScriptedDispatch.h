// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <thread>

#include "adapters/scripted/BackgroundQueue.h"
#include "adapters/scripted/MainQueue.h"
#include "adapters/scripted/ScriptedContext.h"
#include "quarner/platform/DispatchService.h"

namespace quarner {

/// The dispatch service on two queues that can be held. The thread that constructs it is the main
/// thread.
class ScriptedDispatch : public DispatchService {
public:
    explicit ScriptedDispatch(std::shared_ptr<ScriptedContext> context);

    void asyncGlobal(std::function<void()> work) override;
    void syncMain(std::function<void()> work) override;
    void asyncMain(std::function<void()> work) override;

    bool isMainThread() const { return std::this_thread::get_id() == _mainThread; }

    /// Whether background work is running that does not wait for a held main queue.
    bool isBackgroundBusy() const;

    /// Drops the work that has not begun and waits for running work to end.
    void close();

    BackgroundQueue background;
    MainQueue main;

private:
    const std::shared_ptr<ScriptedContext> _context;
    const std::thread::id _mainThread = std::this_thread::get_id();
};

} // namespace quarner
