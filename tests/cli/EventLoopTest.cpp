// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <thread>
#include <vector>

#include "tools/quarner/host/EventLoop.h"
#include "tools/quarner/host/Interruptions.h"

namespace quarner::cli {
namespace {

TEST(EventLoop, RunsWhatAnotherThreadPostsInItsOrder) {
    EventLoop loop;
    std::vector<int> seen;
    std::thread poster([&] {
        for (int i = 0; i < 1000; ++i)
            loop.post([&seen, i] { seen.push_back(i); });
    });
    loop.runUntil([&] { return seen.size() == 1000; });
    poster.join();
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST(EventLoop, KeepsWhatComesAfterTheEndForTheNextRun) {
    EventLoop loop;
    int count = 0;
    loop.post([&] { ++count; });
    loop.runUntil([] { return true; });
    EXPECT_EQ(count, 0);
    loop.runUntil([&] { return count == 1; });
}

TEST(EventLoop, EndsAtOnceAlsoWhenThatWasAskedForBefore) {
    EventLoop loop;
    loop.endAtOnce();
    EXPECT_THROW(loop.runUntil([] { return false; }), EndedAtOnce);
    std::thread other([&] { loop.endAtOnce(); });
    EXPECT_THROW(loop.runUntil([] { return false; }), EndedAtOnce);
    other.join();
}

/// A process that must not be ended.
void failTest() { FAIL() << "the process would have ended"; }

TEST(Interruptions, TheFirstSignalRunsTheHandlerOnTheLoopAndTheSecondEndsTheLoopAtOnce) {
    EventLoop loop;
    Interruptions interruptions(loop, failTest);
    int handled = 0;
    interruptions.setHandler([&] {
        ++handled;
        kill(getpid(), SIGTERM);
    });
    kill(getpid(), SIGINT);
    EXPECT_THROW(loop.runUntil([] { return false; }), EndedAtOnce);
    EXPECT_EQ(handled, 1);
}

TEST(Interruptions, WithoutAHandlerTheFirstSignalEndsTheLoopAtOnce) {
    EventLoop loop;
    Interruptions interruptions(loop, failTest);
    kill(getpid(), SIGINT);
    EXPECT_THROW(loop.runUntil([] { return false; }), EndedAtOnce);
}

TEST(Interruptions, ASignalThatCameBeforeIsServedLater) {
    Interruptions::blockSignals();
    kill(getpid(), SIGINT);
    EventLoop loop;
    Interruptions interruptions(loop, failTest);
    EXPECT_THROW(loop.runUntil([] { return false; }), EndedAtOnce);
}

TEST(Interruptions, AProcessThatIsStuckIsEndedAfterAWhile) {
    EventLoop loop;
    std::promise<void> ended;
    Interruptions interruptions(loop, [&] { ended.set_value(); });
    kill(getpid(), SIGINT);
    EXPECT_EQ(ended.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

} // namespace
} // namespace quarner::cli
