// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tools/quarner/host/DelegateRelay.h"
#include "tools/quarner/host/EventLoop.h"
#include "tools/quarner/host/Interruptions.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;

TEST(EventLoop, RunsWhatAnotherThreadPostsInItsOrder) {
    EventLoop loop;
    std::vector<int> seen;
    std::thread poster([&] {
        for (int i = 0; i < 1000; ++i)
            loop.post([&seen, i] { seen.push_back(i); });
        loop.post([&loop] { loop.quit(); });
    });
    loop.run();
    poster.join();
    ASSERT_EQ(seen.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST(EventLoop, KeepsWhatComesAfterTheEndForTheNextRun) {
    EventLoop loop;
    std::vector<int> seen;
    loop.post([&] { loop.quit(); });
    loop.post([&] {
        seen.push_back(1);
        loop.quit();
    });
    loop.run();
    EXPECT_TRUE(seen.empty());
    loop.run();
    EXPECT_THAT(seen, ElementsAre(1));
}

TEST(EventLoop, ThrowsWhatTheWorkThrows) {
    EventLoop loop;
    loop.post([] { throw std::runtime_error("x"); });
    EXPECT_THROW(loop.run(), std::runtime_error);
}

struct Recorder : QuarnDelegate {
    void addFilesProgressDidChanged(const std::string& name, std::int64_t index,
                                    std::uint64_t of) override {
        seen.push_back(name + std::to_string(index) + "/" + std::to_string(of));
        thread = std::this_thread::get_id();
    }
    void burnProgressDidDone() override { seen.push_back("done"); }

    std::vector<std::string> seen;
    std::thread::id thread;
};

TEST(DelegateRelay, TellsAllReceiversOnTheMainLoopInTheOrderOfTheCalls) {
    EventLoop loop;
    Recorder first;
    Recorder second;
    DelegateRelay relay(loop, {&first, &second});
    std::thread([&] { relay.addFilesProgressDidChanged("a", 1, 2); }).join();
    relay.burnProgressDidDone();
    EXPECT_TRUE(first.seen.empty());
    loop.post([&] { loop.quit(); });
    loop.run();
    EXPECT_THAT(first.seen, ElementsAre("a1/2", "done"));
    EXPECT_EQ(second.seen, first.seen);
    EXPECT_EQ(first.thread, std::this_thread::get_id());
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
    EXPECT_THROW(loop.run(), EndedAtOnce);
    EXPECT_EQ(handled, 1);
}

TEST(Interruptions, WithoutAHandlerTheFirstSignalEndsTheLoopAtOnce) {
    EventLoop loop;
    Interruptions interruptions(loop, failTest);
    kill(getpid(), SIGINT);
    EXPECT_THROW(loop.run(), EndedAtOnce);
}

TEST(Interruptions, ASignalThatCameBeforeIsServedLater) {
    Interruptions::blockSignals();
    kill(getpid(), SIGINT);
    EventLoop loop;
    Interruptions interruptions(loop, failTest);
    EXPECT_THROW(loop.run(), EndedAtOnce);
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
