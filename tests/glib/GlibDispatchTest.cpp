// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/glib/GlibServices.h"
#include "quarner/platform/Platform.h"
#include "tests/glib/GlibLoop.h"
#include "tests/support/KeptLog.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;

/// A gate at which several threads wait until one opens it.
class Gate {
public:
    void open() {
        const std::lock_guard lock(_mutex);
        _isOpen = true;
        _opened.notify_all();
    }
    bool wait(std::chrono::milliseconds limit = 10s) {
        std::unique_lock lock(_mutex);
        return _opened.wait_for(lock, limit, [this] { return _isOpen; });
    }

private:
    std::mutex _mutex;
    std::condition_variable _opened;
    bool _isOpen = false;
};

TEST(GlibDispatch, WorkForTheMainThreadRunsThereWhileTheCallerWaits) {
    const auto dispatch = makeGlibDispatch();
    std::thread::id ranOn;
    std::atomic<bool> isOver = false;
    dispatch->asyncGlobal([&] {
        dispatch->syncMain([&] { ranOn = std::this_thread::get_id(); });
        isOver = true;
    });
    ASSERT_TRUE(runLoopUntil([&] { return isOver.load(); }));
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(GlibDispatch, TheMainThreadRunsItsOwnWorkAtOnceWithoutALoop) {
    const auto dispatch = makeGlibDispatch();
    bool hasRun = false;
    dispatch->syncMain([&] { hasRun = true; });
    EXPECT_TRUE(hasRun);
}

TEST(GlibDispatch, TheThreadThatOwnsTheDefaultContextRunsWorkAtOnce) {
    const auto dispatch = makeGlibDispatch();
    std::thread owner([&] {
        ASSERT_TRUE(g_main_context_acquire(g_main_context_default()));
        std::thread::id ranOn;
        dispatch->syncMain([&] { ranOn = std::this_thread::get_id(); });
        EXPECT_EQ(ranOn, std::this_thread::get_id());
        g_main_context_release(g_main_context_default());
    });
    owner.join();
}

TEST(GlibDispatch, PostedWorkRunsOnTheMainThreadInOrderAndNeverAtOnce) {
    const auto dispatch = makeGlibDispatch();
    std::vector<int> order;
    std::thread([&] { dispatch->asyncMain([&] { order.push_back(1); }); }).join();
    dispatch->asyncMain([&] {
        order.push_back(2);
        dispatch->asyncMain([&] { order.push_back(4); });
        runPendingTurns();
        order.push_back(3);
    });
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(runLoopUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST(GlibDispatch, AWaitForALoopThatNobodyTurnsIsLogged) {
    const auto log = std::make_shared<KeptLog>();
    installPlatform({.log = log});
    const auto dispatch = makeGlibDispatch({}, 1ms);
    std::atomic<bool> isOver = false;
    dispatch->asyncGlobal([&] {
        dispatch->syncMain([] {});
        isOver = true;
    });
    while (log->lines().empty())
        std::this_thread::yield();
    EXPECT_TRUE(runLoopUntil([&] { return isOver.load(); }));
    EXPECT_EQ(log->lines().size(), 1U);
    installPlatform({});
}

TEST(GlibDispatch, PostedWorkIsDroppedByTheShutDown) {
    const auto dispatch = makeGlibDispatch();
    bool hasRun = false;
    dispatch->asyncMain([&] { hasRun = true; });
    dispatch->shutDown();
    dispatch->asyncMain([&] { hasRun = true; });
    runPendingTurns();
    EXPECT_FALSE(hasRun);
}

TEST(GlibDispatch, BackgroundWorkRunsFourAtATimeAtLeast) {
    const auto dispatch = makeGlibDispatch();
    Gate gate;
    std::atomic<int> arrived = 0;
    for (int i = 0; i < 4; ++i)
        dispatch->asyncGlobal([&] {
            if (++arrived == 4)
                gate.open();
            gate.wait();
        });
    EXPECT_TRUE(gate.wait(5s));
    dispatch->shutDown();
}

TEST(GlibDispatch, AHundredRunsThatAllWaitForTheMainThreadEndOnAFewThreads) {
    const auto dispatch = makeGlibDispatch();
    std::atomic<int> working = 0;
    std::atomic<int> mostWorking = 0;
    std::atomic<int> over = 0;
    for (int i = 0; i < 100; ++i)
        dispatch->asyncGlobal([&] {
            const int now = ++working;
            for (int most = mostWorking; now > most;)
                mostWorking.compare_exchange_weak(most, now);
            for (int file = 0; file < 3; ++file)
                dispatch->syncMain([] {});
            --working;
            ++over;
        });
    ASSERT_TRUE(runLoopUntil([&] { return over == 100; }));
    EXPECT_LE(mostWorking, std::max(4, static_cast<int>(std::thread::hardware_concurrency())));
    EXPECT_GE(mostWorking, 2);
}

/// The most pieces of work that the loop runs in one turn while four wait for it.
int mostPiecesInATurn() {
    const auto dispatch = makeGlibDispatch();
    std::atomic<int> calling = 0;
    std::atomic<int> over = 0;
    int ran = 0;
    for (int i = 0; i < 4; ++i)
        dispatch->asyncGlobal([&] {
            ++calling;
            dispatch->syncMain([&] { ++ran; });
            ++over;
        });
    while (calling < 4)
        std::this_thread::yield();
    int most = 0;
    EXPECT_TRUE(runLoopUntil([&] {
        most = std::max(most, ran);
        const bool isOver = over == 4;
        ran = isOver ? ran : 0;
        return isOver;
    }));
    return most;
}

TEST(GlibDispatch, TheLoopTakesOtherTurnsBetweenTwoPiecesOfWork) {
    for (int i = 0; i < 20; ++i) // in some of them, all four have come as far as to wait
        EXPECT_EQ(mostPiecesInATurn(), 1);
}

TEST(GlibDispatch, WorkThatRunsALoopOfItsOwnDoesNotKeepOthersWaiting) {
    const auto dispatch = makeGlibDispatch();
    std::atomic<bool> second = false;
    std::atomic<int> over = 0;
    bool secondRanWithinFirst = false;
    dispatch->asyncGlobal([&] {
        dispatch->syncMain([&] {
            dispatch->asyncGlobal([&] {
                dispatch->syncMain([&] { second = true; });
                ++over;
            });
            secondRanWithinFirst = runLoopUntil([&] { return second.load(); });
        });
        ++over;
    });
    ASSERT_TRUE(runLoopUntil([&] { return over == 2; }));
    EXPECT_TRUE(secondRanWithinFirst);
}

TEST(GlibDispatch, ShuttingDownReleasesWhoWaitsForTheMainThreadAndDropsTheWork) {
    const auto dispatch = makeGlibDispatch();
    std::atomic<bool> hasRun = false;
    std::atomic<int> calling = 0;
    std::atomic<int> returned = 0;
    for (int i = 0; i < 3; ++i)
        dispatch->asyncGlobal([&] {
            ++calling;
            dispatch->syncMain([&] { hasRun = true; });
            ++returned;
        });
    while (calling < 3)
        std::this_thread::yield();
    dispatch->shutDown();
    const int afterShutDown = returned;
    runPendingTurns();
    EXPECT_GE(afterShutDown, 1);
    EXPECT_EQ(returned, afterShutDown); // all callers have returned
    EXPECT_FALSE(hasRun);
}

TEST(GlibDispatch, AfterTheEndOnlyTheMainThreadsOwnWorkRuns) {
    const auto dispatch = makeGlibDispatch();
    dispatch->shutDown();
    bool inBackground = false;
    bool fromOther = false;
    bool onMain = false;
    dispatch->asyncGlobal([&] { inBackground = true; });
    std::thread([&] { dispatch->syncMain([&] { fromOther = true; }); }).join();
    dispatch->syncMain([&] { onMain = true; });
    runPendingTurns();
    EXPECT_FALSE(inBackground);
    EXPECT_FALSE(fromOther);
    EXPECT_TRUE(onMain);
}

TEST(GlibDispatch, ShuttingDownWaitsForRunningWorkAndDropsWhatHasNotBegun) {
    const auto dispatch = makeGlibDispatch();
    const int limit = std::max(4, static_cast<int>(std::thread::hardware_concurrency()));
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    // While all threads work, other work waits; once the service shuts down it is destroyed at
    // once.
    const auto isShutDown = [&] {
        auto held = std::make_shared<int>();
        const std::weak_ptr<int> work = held;
        dispatch->asyncGlobal([held = std::move(held)] {});
        return work.expired();
    };
    for (int i = 0; i < limit + 10; ++i)
        dispatch->asyncGlobal([&] {
            ++begun;
            while (begun < limit || !isShutDown())
                std::this_thread::yield();
            ++ended;
        });
    while (begun < limit)
        std::this_thread::yield();
    dispatch->shutDown();
    EXPECT_EQ(begun, ended);
    EXPECT_EQ(begun, limit);
}

TEST(GlibDispatch, BackgroundWorkMayShutDownItsOwnService) {
    const auto dispatch = makeGlibDispatch();
    Gate over;
    dispatch->asyncGlobal([&] {
        dispatch->shutDown();
        over.open();
    });
    EXPECT_TRUE(over.wait());
}

TEST(GlibDispatch, AcceptedBackgroundWorkOutlivesTheService) {
    auto dispatch = makeGlibDispatch();
    std::atomic<int> over = 0;
    for (int i = 0; i < 20; ++i)
        dispatch->asyncGlobal([&over, held = dispatch] { ++over; });
    dispatch.reset(); // the last reference is dropped on a thread of its own pool
    EXPECT_TRUE(runLoopUntil([&] { return over == 20; }));
}

} // namespace
} // namespace quarner
