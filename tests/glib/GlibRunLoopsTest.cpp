// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "adapters/glib/GlibServices.h"
#include "tests/glib/GlibLoop.h"

namespace quarner {
namespace {

constexpr char name[] = "AName";

DRNotification numbered(int number) { return {name, nullptr, {{"number", number}}}; }

int numberIn(const DRNotification& notification) {
    return static_cast<int>(valueFor(notification.userInfo, "number").asInt64());
}

/// A thread with its own default GMainContext and a running loop.
class LoopThread {
public:
    explicit LoopThread(std::function<void()> prepare)
        : _context(g_main_context_new()), _thread([this, prepare = std::move(prepare)] {
              g_main_context_push_thread_default(_context);
              prepare();
              _isPrepared = true;
              while (!_isToEnd)
                  g_main_context_iteration(_context, TRUE);
              g_main_context_pop_thread_default(_context);
          }) {
        while (!_isPrepared)
            std::this_thread::yield();
    }
    ~LoopThread() {
        end();
        g_main_context_unref(_context);
    }
    LoopThread(const LoopThread&) = delete;
    LoopThread& operator=(const LoopThread&) = delete;

    void end() {
        _isToEnd = true;
        g_main_context_wakeup(_context);
        if (_thread.joinable())
            _thread.join();
    }
    std::thread::id id() const { return _thread.get_id(); }

private:
    GMainContext* _context;
    std::atomic<bool> _isPrepared = false;
    std::atomic<bool> _isToEnd = false;
    std::thread _thread;
};

/// A context that is this thread's default while the object exists.
class DefaultContext {
public:
    DefaultContext() { g_main_context_push_thread_default(_context); }
    ~DefaultContext() {
        g_main_context_pop_thread_default(_context);
        g_main_context_unref(_context);
    }
    DefaultContext(const DefaultContext&) = delete;
    DefaultContext& operator=(const DefaultContext&) = delete;

    operator GMainContext*() const { return _context; }

private:
    GMainContext* const _context = g_main_context_new();
};

TEST(GlibRunLoops, AContextHasOneCentre) {
    const auto loops = makeGlibRunLoops();
    const auto center = loops->currentCenter();
    EXPECT_EQ(loops->currentCenter(), center);
    std::thread([&] {
        EXPECT_EQ(loops->currentCenter(), center) << "without a context of its own";
        const DefaultContext context;
        EXPECT_NE(loops->currentCenter(), center);
    }).join();
    EXPECT_NE(makeGlibRunLoops()->currentCenter(), center);
}

TEST(GlibRunLoops, EachContextOfOneThreadDeliversToItsOwnCentre) {
    const auto loops = makeGlibRunLoops();
    const auto outer = loops->currentCenter();
    const DefaultContext context;
    const auto inner = loops->currentCenter();
    int received = 0;
    inner->addObserver(
        &received, [&](const DRNotification& one) { received = numberIn(one); }, name, nullptr);
    inner->post(numbered(3));
    outer->post(numbered(4));
    EXPECT_EQ(runPendingTurns(), 1);
    EXPECT_EQ(received, 0);
    EXPECT_EQ(runPendingTurns(context), 1);
    EXPECT_EQ(received, 3);
}

TEST(GlibRunLoops, WithinAHandlerTheCurrentCentreIsTheOneThatDelivers) {
    const auto loops = makeGlibRunLoops();
    GMainContext* const context = g_main_context_new();
    g_main_context_push_thread_default(context);
    const auto center = loops->currentCenter();
    g_main_context_pop_thread_default(context);
    std::shared_ptr<RunLoopCenter> found;
    center->addObserver(
        &found, [&](const DRNotification&) { found = loops->currentCenter(); }, name, nullptr);
    center->post(numbered(1));
    runPendingTurns(context);
    EXPECT_EQ(found, center);
    EXPECT_NE(loops->currentCenter(), center);
    g_main_context_unref(context);
}

TEST(GlibRunLoops, ACentreWithObserversIsKeptByItsContext) {
    const auto loops = makeGlibRunLoops();
    int received = 0;
    {
        const DefaultContext context;
        const auto handler = [&, alive = std::make_shared<int>(0)](const DRNotification&) {
            ++received;
        };
        loops->currentCenter()->addObserver(&received, handler, name, nullptr);
        loops->postToAll(numbered(1));
        runPendingTurns(context);
    }
    EXPECT_EQ(received, 1);
}

TEST(GlibRunLoops, AContextThatEndsTakesItsCentreAndItsObserversAlong) {
    const auto loops = makeGlibRunLoops();
    const auto owned = std::make_shared<int>(0);
    std::weak_ptr<RunLoopCenter> center;
    {
        const DefaultContext context;
        center = loops->currentCenter();
        loops->currentCenter()->addObserver(
            &loops, [owned](const DRNotification&) {}, name, nullptr);
        EXPECT_EQ(owned.use_count(), 2);
    }
    EXPECT_TRUE(center.expired());
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(GlibRunLoops, AContextMayEndWhileOthersPostToIt) {
    const auto loops = makeGlibRunLoops();
    std::atomic<bool> isToEnd = false;
    std::thread poster([&] {
        while (!isToEnd)
            loops->postToAll(numbered(1));
    });
    for (int i = 0; i < 200; ++i) {
        const DefaultContext context;
        loops->currentCenter();
        g_main_context_iteration(context, FALSE);
    }
    isToEnd = true;
    poster.join();
}

TEST(GlibRunLoops, ANotificationIsDeliveredByTheLoopAndNotInline) {
    const auto loops = makeGlibRunLoops();
    const auto center = loops->currentCenter();
    int received = 0;
    center->addObserver(
        &received, [&](const DRNotification& one) { received = numberIn(one); }, name, nullptr);
    center->post(numbered(7));
    EXPECT_EQ(received, 0);
    EXPECT_EQ(runPendingTurns(), 1);
    EXPECT_EQ(received, 7);
}

TEST(GlibRunLoops, EachTurnOfTheLoopDeliversOneNotification) {
    const auto loops = makeGlibRunLoops();
    const auto center = loops->currentCenter();
    std::vector<int> received;
    center->addObserver(
        &received, [&](const DRNotification& one) { received.push_back(numberIn(one)); }, name,
        nullptr);
    for (const int number : {1, 2, 3})
        center->post(numbered(number));
    for (std::size_t turn = 1; turn <= 3; ++turn) {
        EXPECT_TRUE(g_main_context_iteration(nullptr, FALSE));
        EXPECT_EQ(received.size(), turn);
    }
    EXPECT_EQ(received, (std::vector{1, 2, 3}));
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
}

TEST(GlibRunLoops, ALoopThatRunsWithinAHandlerDeliversNothing) {
    const auto loops = makeGlibRunLoops();
    const auto center = loops->currentCenter();
    std::vector<int> received;
    bool isWithin = false;
    center->addObserver(
        &received,
        [&](const DRNotification& one) {
            EXPECT_FALSE(isWithin);
            isWithin = true;
            received.push_back(numberIn(one));
            if (numberIn(one) == 1)
                center->post(numbered(3));
            runPendingTurns();
            isWithin = false;
        },
        name, nullptr);
    center->post(numbered(1));
    center->post(numbered(2));
    runPendingTurns();
    EXPECT_EQ(received, (std::vector{1, 2, 3}));
}

TEST(GlibRunLoops, DeliveryIsOnTheThreadWhoseDefaultContextItWas) {
    const auto loops = makeGlibRunLoops();
    std::shared_ptr<RunLoopCenter> center;
    std::atomic<int> received = 0;
    std::thread::id deliveredOn;
    LoopThread other([&] {
        center = loops->currentCenter();
        center->addObserver(
            &loops,
            [&](const DRNotification& one) {
                deliveredOn = std::this_thread::get_id();
                received = numberIn(one);
            },
            name, nullptr);
    });
    const std::thread::id otherId = other.id();
    center->post(numbered(5));
    EXPECT_TRUE(runLoopUntil([&] { return received == 5; })); // this loop does not deliver it
    other.end();
    EXPECT_EQ(deliveredOn, otherId);
}

TEST(GlibRunLoops, AThreadWithoutAContextOfItsOwnBelongsToTheDefaultLoop) {
    const auto loops = makeGlibRunLoops();
    std::shared_ptr<RunLoopCenter> center;
    std::thread([&] { center = loops->currentCenter(); }).join();
    std::thread::id deliveredOn;
    center->addObserver(
        &loops, [&](const DRNotification&) { deliveredOn = std::this_thread::get_id(); }, name,
        nullptr);
    center->post(numbered(1));
    runPendingTurns();
    EXPECT_EQ(deliveredOn, std::this_thread::get_id());
}

TEST(GlibRunLoops, PostingToAllReachesEveryCentreOnItsOwnThread) {
    const auto loops = makeGlibRunLoops();
    std::atomic<int> received = 0;
    const auto listen = [&] {
        loops->currentCenter()->addObserver(
            &received,
            [&, self = std::this_thread::get_id()](const DRNotification&) {
                EXPECT_EQ(std::this_thread::get_id(), self);
                ++received;
            },
            name, nullptr);
    };
    listen();
    LoopThread second(listen);
    LoopThread third(listen);
    loops->postToAll(numbered(1));
    EXPECT_TRUE(runLoopUntil([&] { return received == 3; }));
}

TEST(GlibRunLoops, ACentreMayOutliveItsContext) {
    const auto loops = makeGlibRunLoops();
    std::weak_ptr<RunLoopCenter> center;
    std::shared_ptr<RunLoopCenter> held;
    {
        LoopThread other([&] { center = held = loops->currentCenter(); });
    }
    held->post(numbered(1)); // its loop is gone: has no effect
    held.reset();
    EXPECT_TRUE(center.expired());
    loops->postToAll(numbered(2));
}

TEST(GlibRunLoops, ACentreMayBeLetGoOfWhileItDelivers) {
    auto loops = makeGlibRunLoops();
    std::shared_ptr<RunLoopCenter> center;
    std::thread([&] { center = loops->currentCenter(); }).join();
    int received = 0;
    center->addObserver(
        &received,
        [&](const DRNotification&) {
            ++received;
            center.reset();
            loops.reset();
        },
        name, nullptr);
    center->post(numbered(1));
    center->post(numbered(2));
    runPendingTurns();
    EXPECT_EQ(received, 1);
}

TEST(GlibRunLoops, NotificationsOfOneThreadStayInOrderAmongThoseOfOthers) {
    const auto loops = makeGlibRunLoops();
    const auto center = loops->currentCenter();
    constexpr int posters = 4;
    constexpr int each = 250;
    std::vector<std::vector<int>> received(posters);
    int count = 0;
    center->addObserver(
        &received,
        [&](const DRNotification& one) {
            received[static_cast<std::size_t>(numberIn(one) / each)].push_back(numberIn(one));
            ++count;
        },
        name, nullptr);
    std::vector<std::thread> threads;
    for (int poster = 0; poster < posters; ++poster)
        threads.emplace_back([&, poster] {
            for (int i = 0; i < each; ++i)
                center->post(numbered(poster * each + i));
        });
    EXPECT_TRUE(runLoopUntil([&] { return count == posters * each; }));
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& ofOne : received)
        EXPECT_TRUE(std::is_sorted(ofOne.begin(), ofOne.end()));
}

} // namespace
} // namespace quarner
