// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <thread>
#include <utility>

#include "adapters/glib/GlibServices.h"
#include "adapters/glib/WakeSource.h"
#include "adapters/glib/WorkPool.h"
#include "adapters/runloop/MainThreadQueue.h"

namespace quarner {
namespace {

// Work mostly waits for the main thread, so a few threads are useful on any machine.
constexpr std::size_t fewestThreads = 4;

std::size_t threadLimit() {
    return std::max<std::size_t>(fewestThreads, std::thread::hardware_concurrency());
}

std::unique_ptr<LoopSource> sourceOfDefaultContext(LoopSource::Nesting nesting,
                                                   LoopSource::Turn turn) {
    return std::make_unique<WakeSource>(g_main_context_default(), nesting, std::move(turn));
}

class Dispatch : public GlibDispatch {
public:
    Dispatch(const PostToLoop& postToMain, std::chrono::milliseconds warnAfter)
        : _isOnGlib(!postToMain),
          _mainQueue(postToMain ? postedSources(postToMain) : sourceOfDefaultContext, warnAfter) {}

    void asyncGlobal(std::function<void()> work) override { _pool->submit(std::move(work)); }
    void syncMain(std::function<void()> work) override {
        if (isMainThread())
            work();
        else
            _mainQueue.runAndWait(work);
    }
    void asyncMain(std::function<void()> work) override { _mainQueue.post(std::move(work)); }
    void shutDown() override {
        _mainQueue.shutDown(); // first: the pool's work may be waiting for the main queue
        _pool->shutDown();
    }

private:
    bool isMainThread() const {
        return std::this_thread::get_id() == _makerThread ||
               (_isOnGlib && g_main_context_is_owner(g_main_context_default()));
    }

    const std::thread::id _makerThread = std::this_thread::get_id();
    const bool _isOnGlib;
    MainThreadQueue _mainQueue;
    const std::shared_ptr<WorkPool> _pool = std::make_shared<WorkPool>(threadLimit());
};

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): reads as the other makers do
std::shared_ptr<GlibDispatch> makeGlibDispatch(PostToLoop postToMain,
                                               std::chrono::milliseconds warnAfter) {
    return std::make_shared<Dispatch>(postToMain, warnAfter);
}

} // namespace quarner
