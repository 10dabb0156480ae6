// SPDX-License-Identifier: LGPL-2.1-or-later
#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/glib/GlibServices.h"
#include "adapters/glib/WakeSource.h"

namespace quarner {
namespace {

using ContextPtr = std::unique_ptr<GMainContext, decltype(&g_main_context_unref)>;

/// A centre whose notifications a GMainContext delivers.
class GlibCenter : public RunLoopCenter {
public:
    GlibCenter() : RunLoopCenter([this] { _source->wake(); }) {}

    static std::shared_ptr<GlibCenter> of(GMainContext* context,
                                          WakeSource::ContextEnded contextEnded) {
        auto center = std::make_shared<GlibCenter>();
        // The loop may run on another thread while the last owner releases the centre.
        const auto turn = [weak = std::weak_ptr(center), context] {
            const auto alive = weak.lock();
            return alive && alive->takeTurn(context);
        };
        center->_source.emplace(context, WakeSource::Nesting::No, turn, std::move(contextEnded));
        return center;
    }

    /// Nothing is delivered afterwards. On another thread than the loop's, a delivery may still be
    /// under way. Any thread.
    void close() { _isClosed = true; }

private:
    bool takeTurn(GMainContext* context) {
        if (_isClosed)
            return false;
        // A host may run a loop whose context is not its thread's default. A handler must still
        // find the centre that called it.
        g_main_context_push_thread_default(context);
        deliverOne();
        g_main_context_pop_thread_default(context);
        return hasPending();
    }

    std::atomic<bool> _isClosed = false;
    std::optional<WakeSource> _source;
};

/// A centre whose notifications a function posts to its loop.
class PostedCenter : public RunLoopCenter {
public:
    PostedCenter() : RunLoopCenter([this] { _source->wake(); }) {}

    static std::shared_ptr<PostedCenter> of(const PostToLoop& post) {
        auto center = std::make_shared<PostedCenter>();
        const auto turn = [weak = std::weak_ptr(center)] {
            const auto alive = weak.lock();
            return alive && alive->takeTurn();
        };
        center->_source = postedSources(post)(LoopSource::Nesting::No, turn);
        return center;
    }

    /// As `GlibCenter::close`.
    void close() { _isClosed = true; }

private:
    bool takeTurn() {
        if (_isClosed)
            return false;
        deliverOne();
        return hasPending();
    }

    std::atomic<bool> _isClosed = false;
    std::unique_ptr<LoopSource> _source;
};

/// The centres of all contexts that were asked for one, each for as long as its context exists.
class Centers : public std::enable_shared_from_this<Centers> {
public:
    std::shared_ptr<GlibCenter> of(GMainContext* context) {
        const std::lock_guard lock(_mutex);
        std::shared_ptr<GlibCenter>& center = _all[context];
        if (!center)
            center = GlibCenter::of(context, [weak = weak_from_this(), context] {
                if (const auto centers = weak.lock())
                    centers->forget(context);
            });
        return center;
    }

    std::vector<std::shared_ptr<GlibCenter>> all() const {
        const std::lock_guard lock(_mutex);
        std::vector<std::shared_ptr<GlibCenter>> centers;
        for (const auto& [context, center] : _all)
            centers.push_back(center);
        return centers;
    }

private:
    void forget(GMainContext* context) {
        std::shared_ptr<GlibCenter>
            forgotten; // destroyed, with its observers, after the lock is released
        const std::lock_guard lock(_mutex);
        const auto found = _all.find(context);
        forgotten = std::move(found->second);
        _all.erase(found);
    }

    mutable std::mutex _mutex;
    std::map<GMainContext*, std::shared_ptr<GlibCenter>> _all;
};

class GlibRunLoops : public RunLoops {
public:
    explicit GlibRunLoops(const PostToLoop& postToMain)
        : _main(postToMain ? PostedCenter::of(postToMain) : nullptr) {}
    /// Observers may keep a centre longer: it stays silent then.
    ~GlibRunLoops() override {
        if (_main)
            _main->close();
        for (const auto& center : _centers->all())
            center->close();
    }

    std::shared_ptr<RunLoopCenter> currentCenter() override {
        const ContextPtr context(g_main_context_ref_thread_default(), g_main_context_unref);
        const bool isOnMain =
            std::this_thread::get_id() == _makerThread || context.get() == g_main_context_default();
        if (_main && isOnMain)
            return _main;
        return _centers->of(context.get());
    }

    void postToAll(const DRNotification& notification) override {
        if (_main)
            _main->post(notification);
        for (const auto& center : _centers->all())
            center->post(notification);
    }

private:
    const std::thread::id _makerThread = std::this_thread::get_id();
    const std::shared_ptr<PostedCenter> _main; // null if GLib's loop is the main loop
    const std::shared_ptr<Centers> _centers = std::make_shared<Centers>();
};

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): reads as the other makers do
std::shared_ptr<RunLoops> makeGlibRunLoops(PostToLoop postToMain) {
    return std::make_shared<GlibRunLoops>(postToMain);
}

} // namespace quarner
