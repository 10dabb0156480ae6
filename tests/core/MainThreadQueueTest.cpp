// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/MainThreadQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "quarner/platform/Platform.h"
#include "tests/support/HandMadeLoop.h"
#include "tests/support/KeptLog.h"

namespace quarner::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PostedSourcesTest : public ::testing::Test {
protected:
    HandMadeLoop loop;
    const MakeLoopSource makeSource =
        postedSources([this](std::function<void()> work) { loop.post(std::move(work)); });
};

TEST_F(PostedSourcesTest, SeveralWakesBeforeATurnTakeOne) {
    int turns = 0;
    const auto source = makeSource(LoopSource::Nesting::No, [&] {
        ++turns;
        return false;
    });
    source->wake();
    source->wake();
    EXPECT_EQ(loop.waiting(), 1U);
    loop.turn();
    EXPECT_EQ(turns, 1);
    source->wake();
    loop.turn();
    EXPECT_EQ(turns, 2);
}

TEST_F(PostedSourcesTest, ATurnThatSaysThereIsMoreIsFollowedByAnother) {
    int left = 3;
    const auto source = makeSource(LoopSource::Nesting::No, [&] { return --left > 0; });
    source->wake();
    while (loop.turn()) {
    }
    EXPECT_EQ(left, 0);
}

TEST_F(PostedSourcesTest, ALoopInsideATurnTakesTheNextOneAfterIt) {
    int depth = 0;
    int deepest = 0;
    int turns = 0;
    std::unique_ptr<LoopSource> source;
    source = makeSource(LoopSource::Nesting::No, [&] {
        deepest = std::max(deepest, ++depth);
        if (++turns == 1) {
            source->wake();
            loop.turn();
        }
        --depth;
        return false;
    });
    source->wake();
    while (loop.turn()) {
    }
    EXPECT_EQ(turns, 2);
    EXPECT_EQ(deepest, 1);
}

TEST_F(PostedSourcesTest, ASourceThatHasEndedTakesNoTurn) {
    bool isTaken = false;
    auto source = makeSource(LoopSource::Nesting::No, [&] {
        isTaken = true;
        return false;
    });
    source->wake();
    source.reset();
    loop.turn();
    EXPECT_FALSE(isTaken);
}

TEST_F(PostedSourcesTest, ASourceMayEndInsideItsTurn) {
    std::unique_ptr<LoopSource> source;
    source = makeSource(LoopSource::Nesting::No, [&] {
        source.reset();
        return true;
    });
    source->wake();
    EXPECT_TRUE(loop.turn());
    while (loop.turn()) {
    }
    EXPECT_EQ(source, nullptr);
}

class MainThreadQueueTest : public PostedSourcesTest {
protected:
    MainThreadQueueTest() { installPlatform({.log = log}); }
    ~MainThreadQueueTest() override { installPlatform({}); }

    const std::shared_ptr<KeptLog> log = std::make_shared<KeptLog>();
};

TEST_F(MainThreadQueueTest, ACallerWaitsForItsWorkAndPostedWorkKeepsItsOrder) {
    MainThreadQueue queue(makeSource);
    std::vector<int> order;
    std::atomic<bool> isOver = false;
    std::thread caller([&] {
        queue.post([&] { order.push_back(1); });
        queue.post([&] { order.push_back(2); });
        queue.runAndWait([&] { EXPECT_TRUE(true); });
        isOver = true;
    });
    EXPECT_TRUE(loop.turnUntil([&] { return isOver && order.size() == 2; }));
    caller.join();
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(MainThreadQueueTest, PostedWorkDoesNotRunInsideOtherPostedWork) {
    MainThreadQueue queue(makeSource);
    std::vector<int> order;
    queue.post([&] {
        queue.post([&] { order.push_back(2); });
        loop.turn();
        order.push_back(1);
    });
    EXPECT_TRUE(loop.turnUntil([&] { return order.size() == 2; }));
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(MainThreadQueueTest, ShuttingDownDropsPostedWorkAndReleasesWhatItHolds) {
    MainThreadQueue queue(makeSource);
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watch = held;
    queue.post([held = std::move(held)] { FAIL(); });
    queue.shutDown();
    EXPECT_TRUE(watch.expired());
    queue.post([] { FAIL(); });
    while (loop.turn()) {
    }
}

TEST_F(MainThreadQueueTest, AWaitForALoopThatNobodyTurnsIsLoggedOnce) {
    MainThreadQueue queue(makeSource, 1ms);
    std::atomic<int> over = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 2; ++i)
        callers.emplace_back([&] {
            queue.runAndWait([] {});
            ++over;
        });
    while (log->lines().empty())
        std::this_thread::yield();
    std::this_thread::sleep_for(20ms); // the other one waits for too long as well
    EXPECT_TRUE(loop.turnUntil([&] { return over == 2; }));
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_THAT(log->lines(), ElementsAre(HasSubstr("the main loop has not run for 1 ms")));
}

} // namespace
} // namespace quarner::testing
