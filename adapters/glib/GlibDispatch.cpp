// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <thread>
#include <utility>

#include "adapters/glib/GlibMainQueue.h"
#include "adapters/glib/GlibServices.h"
#include "adapters/glib/WorkPool.h"

namespace quarner {
namespace {

// Work mostly waits for the main thread, so a few threads are useful on any machine.
constexpr std::size_t fewestThreads = 4;

std::size_t threadLimit() {
    return std::max<std::size_t>(fewestThreads, std::thread::hardware_concurrency());
}

class Dispatch : public GlibDispatch {
public:
    void asyncGlobal(std::function<void()> work) override { _pool->submit(std::move(work)); }
    void syncMain(std::function<void()> work) override { _mainQueue.runAndWait(work); }
    void shutDown() override {
        _mainQueue.shutDown(); // first: the pool's work may be waiting for the main queue
        _pool->shutDown();
    }

private:
    GlibMainQueue _mainQueue;
    const std::shared_ptr<WorkPool> _pool = std::make_shared<WorkPool>(threadLimit());
};

} // namespace

std::shared_ptr<GlibDispatch> makeGlibDispatch() { return std::make_shared<Dispatch>(); }

} // namespace quarner
