// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnThreads.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>

#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;

const auto makeStop = [] { return std::make_shared<StopSignal>(); };

TEST(BurnThreads, RunWorkOnAThreadOfItsOwn) {
    BurnThreads threads;
    std::promise<std::thread::id> ran;
    ASSERT_TRUE(threads.run([&] { ran.set_value(std::this_thread::get_id()); }, makeStop()));
    EXPECT_NE(ran.get_future().get(), std::this_thread::get_id());
}

TEST(BurnThreads, LetGoOfWorkThatIsDone) {
    BurnThreads threads;
    std::promise<void> dropped;
    const auto told = [&](int* held) {
        delete held;
        dropped.set_value();
    };
    ASSERT_TRUE(threads.run([held = std::shared_ptr<int>(new int(0), told)] {}, makeStop()));
    EXPECT_EQ(dropped.get_future().wait_for(1min), std::future_status::ready);
}

TEST(BurnThreads, LetGoOfTheStopSignalsOfBurnsThatAreOver) {
    BurnThreads threads;
    auto stop = makeStop();
    const std::weak_ptr<StopSignal> first = stop;
    ASSERT_TRUE(threads.run([] {}, std::move(stop)));
    const auto end = std::chrono::steady_clock::now() + 1min;
    while (!first.expired() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
        ASSERT_TRUE(threads.run([] {}, makeStop())); // each run looks for those that are over
    }
    EXPECT_TRUE(first.expired());
}

TEST(BurnThreads, StartABurnWithoutWaitingForOneThatIsUnderWay) {
    std::promise<void> mayEnd;
    BurnThreads threads;
    ASSERT_TRUE(threads.run([ending = mayEnd.get_future().share()] { ending.wait(); }, makeStop()));
    ASSERT_TRUE(threads.run([] {}, makeStop()));
    ASSERT_TRUE(threads.run([] {}, makeStop()));
    mayEnd.set_value();
}

/// Work that ends when it is stopped, and then sets a flag.
std::function<void()> workUntilStopped(const std::shared_ptr<StopSignal>& stop, bool& isOver) {
    return [stop, &isOver] {
        std::promise<void> stopped;
        const std::stop_callback callback(stop->token(), [&] { stopped.set_value(); });
        stopped.get_future().wait();
        isOver = true;
    };
}

TEST(BurnThreads, CancelWhatIsUnderWayAndWaitForItAtTheEnd) {
    bool isOver = false;
    const auto stop = makeStop();
    BurnThreads threads;
    ASSERT_TRUE(threads.run(workUntilStopped(stop, isOver), stop));
    threads.shutDown();
    EXPECT_TRUE(isOver);
    EXPECT_THROW(stop->throwIfRequested(), BurnFailure);
}

TEST(BurnThreads, CancelWhatIsUnderWayWhenTheyAreDestroyed) {
    bool isOver = false;
    {
        const auto stop = makeStop();
        BurnThreads threads;
        ASSERT_TRUE(threads.run(workUntilStopped(stop, isOver), stop));
    }
    EXPECT_TRUE(isOver);
}

TEST(BurnThreads, RunNothingAfterTheEnd) {
    bool hasRun = false;
    BurnThreads threads;
    threads.shutDown();
    EXPECT_FALSE(threads.run([&] { hasRun = true; }, makeStop()));
    threads.shutDown();
    EXPECT_FALSE(hasRun);
}

} // namespace
} // namespace quarner
