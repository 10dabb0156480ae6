// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/RunLoopCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RunLoopCenterTest : public ::testing::Test {
protected:
    /// A handler that keeps a text.
    DRNotificationCenter::Handler keeping(const std::string& text) {
        return [this, text](const DRNotification&) { heard.push_back(text); };
    }
    void observe(const std::string& text, const DRObject* from = nullptr) {
        center.addObserver(&observer, keeping(text), "name", from);
    }
    void post(const std::string& name = "name") { center.post({name, sender, {}}); }
    void deliverAll() {
        while (center.deliverOne()) {
        }
    }

    std::atomic<int> wakes = 0;
    RunLoopCenter center{[this] { ++wakes; }};
    const std::shared_ptr<DRObject> sender = std::make_shared<DRObject>();
    std::vector<std::string> heard;
    int observer = 0;
    int otherObserver = 0;
};

TEST_F(RunLoopCenterTest, NotificationsAreDeliveredInTheOrderOfTheirPosting) {
    center.addObserver(
        &observer,
        [this](const DRNotification& notification) {
            heard.push_back(*valueFor(notification.userInfo, "text").asString());
        },
        "name", nullptr);
    for (const char* text : {"one", "two", "three"})
        center.post({"name", sender, {{"text", text}}});
    EXPECT_THAT(heard, IsEmpty());
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("one", "two", "three"));
}

TEST_F(RunLoopCenterTest, OneTurnDeliversOneNotificationToAllInTheOrderOfRegistration) {
    observe("a");
    observe("b");
    observe("a again");
    post();
    post();
    EXPECT_TRUE(center.deliverOne());
    EXPECT_THAT(heard, ElementsAre("a", "b", "a again"));
    EXPECT_TRUE(center.hasPending());
    EXPECT_TRUE(center.deliverOne());
    EXPECT_FALSE(center.hasPending());
    EXPECT_FALSE(center.deliverOne());
    EXPECT_EQ(heard.size(), 6U);
}

TEST_F(RunLoopCenterTest, EveryPostingWakesTheLoop) {
    post();
    post("nobody observes this");
    EXPECT_EQ(wakes, 2);
    EXPECT_TRUE(center.deliverOne());
    EXPECT_EQ(wakes, 2);
}

TEST_F(RunLoopCenterTest, TheNotificationIsDeliveredAsItWasPosted) {
    DRNotification received;
    center.addObserver(
        &observer, [&](const DRNotification& notification) { received = notification; }, "name",
        nullptr);
    center.post({"name", sender, {{"key", 7}}});
    deliverAll();
    EXPECT_EQ(received.name, "name");
    EXPECT_EQ(received.object, sender);
    EXPECT_EQ(received.userInfo, (Dictionary{{"key", 7}}));
}

TEST_F(RunLoopCenterTest, NameAndSenderDecideWhoHears) {
    const auto other = std::make_shared<DRObject>();
    observe("from any");
    observe("from the sender", sender.get());
    observe("from the other", other.get());
    center.addObserver(&observer, keeping("other name"), "other name", sender.get());
    post();
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("from any", "from the sender"));
}

TEST_F(RunLoopCenterTest, AnObserverThatRegistersBeforeTheDeliveryMissesNothing) {
    post();
    observe("late");
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("late"));
}

TEST_F(RunLoopCenterTest, AnObserverThatRegistersDuringADeliveryHearsTheNextOne) {
    center.addObserver(
        &observer, [this](const DRNotification&) { observe("added"); }, "name", nullptr);
    post();
    EXPECT_TRUE(center.deliverOne());
    EXPECT_THAT(heard, IsEmpty());
    post();
    EXPECT_TRUE(center.deliverOne());
    EXPECT_THAT(heard, ElementsAre("added"));
}

TEST_F(RunLoopCenterTest, AfterItsRemovalAnObserverHearsNotEvenWhatWasPostedBefore) {
    observe("gone");
    post();
    center.removeObserver(&observer, "name", nullptr);
    deliverAll();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(RunLoopCenterTest, AnObserverRemovedDuringADeliveryIsNotCalledAnyMore) {
    center.addObserver(
        &otherObserver,
        [this](const DRNotification&) { center.removeObserver(&observer, "name", nullptr); },
        "name", nullptr);
    observe("gone");
    post();
    deliverAll();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(RunLoopCenterTest, AHandlerMayRemoveItself) {
    center.addObserver(
        &observer,
        [this, alive = std::make_shared<std::string>("once")](const DRNotification&) {
            center.removeObserver(&observer, "name", nullptr);
            heard.push_back(*alive); // the handler's captures live until it returns
        },
        "name", nullptr);
    post();
    post();
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("once"));
}

TEST_F(RunLoopCenterTest, ARemovalConcernsOneNameOneSenderAndOneObserver) {
    const auto other = std::make_shared<DRObject>();
    observe("from any");
    observe("from the sender", sender.get());
    center.addObserver(&otherObserver, keeping("other observer"), "name", sender.get());
    center.addObserver(&observer, keeping("other name"), "other name", sender.get());
    center.removeObserver(&observer, "name", sender.get());
    center.removeObserver(&observer, "name", other.get());
    post();
    post("other name");
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("from any", "other observer", "other name"));
}

TEST_F(RunLoopCenterTest, ARemovalWithoutASenderConcernsThemAll) {
    observe("from any");
    observe("from the sender", sender.get());
    center.addObserver(&observer, keeping("other name"), "other name", sender.get());
    center.removeObserver(&observer, "name", nullptr);
    post();
    post("other name");
    deliverAll();
    EXPECT_THAT(heard, ElementsAre("other name"));
}

TEST_F(RunLoopCenterTest, DeliveryIsNeverReentrant) {
    bool wasDelivered = true;
    center.addObserver(
        &observer,
        [&](const DRNotification&) {
            heard.push_back("begin");
            wasDelivered = center.deliverOne();
            heard.push_back("end");
        },
        "name", nullptr);
    post();
    post();
    EXPECT_TRUE(center.deliverOne());
    EXPECT_FALSE(wasDelivered);
    EXPECT_THAT(heard, ElementsAre("begin", "end"));
    EXPECT_TRUE(center.deliverOne());
    EXPECT_EQ(heard.size(), 4U);
}

TEST_F(RunLoopCenterTest, AHandlerMayPost) {
    center.addObserver(
        &observer,
        [this](const DRNotification&) {
            heard.push_back("heard");
            if (heard.size() < 3)
                post();
        },
        "name", nullptr);
    post();
    deliverAll();
    EXPECT_EQ(heard.size(), 3U);
}

TEST_F(RunLoopCenterTest, TheCenterKeepsAPostedSenderButNoObservedOne) {
    auto observed = std::make_shared<DRObject>();
    observe("from the sender", observed.get());
    EXPECT_EQ(observed.use_count(), 1);
    center.post({"name", observed, {}});
    const std::weak_ptr<DRObject> watched = observed;
    observed.reset();
    EXPECT_FALSE(watched.expired());
    deliverAll();
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(heard, ElementsAre("from the sender"));
}

TEST_F(RunLoopCenterTest, ThreadsMayPostWhileTheLoopDelivers) {
    constexpr int threads = 4;
    constexpr int each = 500;
    std::vector<std::vector<std::int64_t>> received(threads);
    center.addObserver(
        &observer,
        [&](const DRNotification& notification) {
            const std::int64_t thread = valueFor(notification.userInfo, "thread").asInt64();
            received[static_cast<std::size_t>(thread)].push_back(
                valueFor(notification.userInfo, "number").asInt64());
        },
        "name", nullptr);
    std::vector<std::thread> posters;
    for (int thread = 0; thread < threads; ++thread)
        posters.emplace_back([&, thread] {
            for (int number = 0; number < each; ++number)
                center.post({"name", sender, {{"thread", thread}, {"number", number}}});
        });
    std::atomic<bool> havePosted = false;
    std::thread joiner([&] {
        for (std::thread& poster : posters)
            poster.join();
        havePosted = true;
    });
    while (!havePosted || center.hasPending())
        center.deliverOne();
    joiner.join();
    EXPECT_EQ(wakes, threads * each);
    for (const auto& numbers : received) {
        EXPECT_EQ(numbers.size(), static_cast<std::size_t>(each));
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

TEST_F(RunLoopCenterTest, ThreadsMayRegisterAndRemoveWhileTheLoopDelivers) {
    std::atomic<int> calls = 0;
    std::thread registrar([&] {
        for (int turn = 0; turn < 300; ++turn) {
            center.addObserver(
                &otherObserver, [&](const DRNotification&) { ++calls; }, "name", nullptr);
            center.removeObserver(&otherObserver, "name", nullptr);
        }
    });
    for (int turn = 0; turn < 300; ++turn) {
        post();
        EXPECT_TRUE(center.deliverOne());
    }
    registrar.join();
    const int callsUntilRemoved = calls;
    post();
    deliverAll();
    EXPECT_EQ(calls, callsUntilRemoved);
}

} // namespace
} // namespace quarner::testing
