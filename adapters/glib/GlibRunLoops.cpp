// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "adapters/glib/GlibServices.h"
#include "adapters/glib/WakeSource.h"

namespace quarner {
namespace {

using ContextPtr = std::unique_ptr<GMainContext, decltype(&g_main_context_unref)>;

/// A centre that a GMainContext delivers.
class GlibCenter : public RunLoopCenter {
public:
    GlibCenter() : RunLoopCenter([this] { _source->wake(); }) {}

    static std::shared_ptr<GlibCenter> ofThisThread() {
        const ContextPtr context(g_main_context_ref_thread_default(), g_main_context_unref);
        auto center = std::make_shared<GlibCenter>();
        // The loop may run on another thread while the last owner lets go of the centre.
        const auto turn = [weak = std::weak_ptr(center)] {
            const auto alive = weak.lock();
            return alive && alive->takeTurn();
        };
        center->_source.emplace(context.get(), WakeSource::Nesting::No, turn);
        return center;
    }

private:
    bool takeTurn() {
        deliverOne();
        return hasPending();
    }

    std::optional<WakeSource> _source;
};

/// The centres that are alive.
class Centers {
public:
    void add(const std::shared_ptr<RunLoopCenter>& center) {
        const std::lock_guard lock(_mutex);
        std::erase_if(_all, [](const auto& weak) { return weak.expired(); });
        _all.push_back(center);
    }

    std::vector<std::shared_ptr<RunLoopCenter>> all() const {
        const std::lock_guard lock(_mutex);
        std::vector<std::shared_ptr<RunLoopCenter>> alive;
        for (const auto& weak : _all)
            if (auto center = weak.lock())
                alive.push_back(std::move(center));
        return alive;
    }

private:
    mutable std::mutex _mutex;
    std::vector<std::weak_ptr<RunLoopCenter>> _all;
};

/// The centre of this thread in one set of run loops. The thread owns it.
struct OwnCenter {
    std::weak_ptr<const Centers> runLoops;
    std::shared_ptr<RunLoopCenter> center;
};

class GlibRunLoops : public RunLoops {
public:
    std::shared_ptr<RunLoopCenter> currentCenter() override {
        thread_local std::vector<OwnCenter> own;
        for (const OwnCenter& candidate : own)
            if (candidate.runLoops.lock() == _centers)
                return candidate.center;
        std::erase_if(own, [](const OwnCenter& old) { return old.runLoops.expired(); });
        const auto center = GlibCenter::ofThisThread();
        own.push_back({_centers, center});
        _centers->add(center);
        return center;
    }

    void postToAll(const DRNotification& notification) override {
        for (const auto& center : _centers->all())
            center->post(notification);
    }

private:
    const std::shared_ptr<Centers> _centers = std::make_shared<Centers>();
};

} // namespace

std::shared_ptr<RunLoops> makeGlibRunLoops() { return std::make_shared<GlibRunLoops>(); }

} // namespace quarner
