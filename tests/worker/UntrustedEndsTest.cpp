// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "adapters/drive/DriveServer.h"
#include "adapters/optical/DriveWorker.h"
#include "quarner/platform/Platform.h"
#include "tests/support/ChannelPair.h"

namespace quarner {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;

/// A program that the library does not trust: the test is the program.
class AnUntrustedProgram : public ::testing::Test, public ChannelPair {
protected:
    ~AnUntrustedProgram() override { DriveWorker::scaleTimeouts(1); }

    DRError errorOf(const DriveRequest& request, const Dictionary& fields = {}) {
        try {
            worker.ask(request, fields, nullptr);
        } catch (const BurnFailure& failure) {
            return failure.error();
        }
        return {};
    }

    /// The second process, which unlocks the tray, has ended at once.
    std::unique_ptr<WorkerProcess> start() {
        return std::make_unique<WorkerProcess>(
            std::exchange(isStarted, true) ? std::move(ChannelPair().channel) : std::move(channel));
    }
    /// The messages that it has got.
    std::vector<Message> messages() {
        const Channel program = std::move(other).asChannel();
        std::vector<Message> found;
        Message message;
        while (program.receive(message, Clock::now()) == Channel::Result::Done)
            found.push_back(message);
        return found;
    }
    std::vector<std::string> namesOfMessages() {
        std::vector<std::string> names;
        for (const Message& message : messages())
            names.push_back(message.name);
        return names;
    }

    bool isStarted = false;
    bool isGone = false;
    unsigned discs = 0;
    DriveWorker worker{DriveRecord{"/dev/sr-none", "", "", "", true}, "Recorder",
                       [this](const DiscFacts&) { ++discs; }, [this] { return start(); },
                       [this] { return isGone; }};
};

TEST_F(AnUntrustedProgram, IsNotSentARequestThatIsTooLarge) {
    EXPECT_EQ(errorOf(drive::facts, {{"node", std::string(mostMessageBytes, 'x')}}),
              DRError::Internal);
}

TEST_F(AnUntrustedProgram, RepliesToARequestThatWasGivenUpBeforeItIsAskedForMore) {
    worker.tell(drive::write, {}, nullptr);
    other.send({drive::failed, fieldsOf(BurnFailure(DRError::WriteFailed, "not written"))});
    other.send({drive::done, {{"of", "release"}}});
    EXPECT_EQ(worker.ask(drive::release, nullptr), Dictionary({{"of", "release"}}));
}

TEST_F(AnUntrustedProgram, IsToldToStopARequestThatWasGivenUp) {
    worker.tell(drive::write, {}, nullptr);
    other.send({drive::failed, fieldsOf(BurnFailure(DRError::UserCanceled, "stopped"))});
    other.send({drive::done});
    worker.ask(drive::release, nullptr);
    EXPECT_THAT(namesOfMessages(), ElementsAre("hello", "write", "stop", "release"));
}

TEST_F(AnUntrustedProgram, ThatHungIsNotAskedAgainAlsoIfItLivesOn) {
    DriveWorker::scaleTimeouts(0.001);
    EXPECT_EQ(errorOf(drive::facts), DRError::DeviceHanging);
    EXPECT_TRUE(worker.hasHung());
    DriveWorker::scaleTimeouts(1);
    const auto begin = Clock::now();
    EXPECT_EQ(errorOf(drive::release), DRError::Internal);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    EXPECT_THAT(namesOfMessages(), ElementsAre("hello", "facts"));
}

TEST_F(AnUntrustedProgram, ThatHungLosesItsConnectionAlsoIfItLivesOn) {
    DriveWorker::scaleTimeouts(0.001);
    EXPECT_EQ(errorOf(drive::facts), DRError::DeviceHanging);
    EXPECT_FALSE(other.send({drive::done}));
}

TEST_F(AnUntrustedProgram, IsToldToStopWhenTheDriveIsGone) {
    DriveWorker::scaleTimeouts(0.001);
    isGone = true;
    EXPECT_EQ(errorOf(drive::release), DRError::DeviceHanging);
    const std::vector<Message> found = messages();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[2].name, drive::stop.name);
    EXPECT_EQ(errorFor(valueFor(found[2].fields, "error").asUInt64()), DRError::DeviceVanished);
}

TEST_F(AnUntrustedProgram, MayReportADiscOnlyWhenTheDriveIsClaimed) {
    for (const DriveRequest& request : {drive::openSession, drive::claim}) {
        other.send({drive::disc});
        other.send({drive::done});
        worker.ask(request, nullptr);
        EXPECT_EQ(discs, request.name == std::string_view(drive::claim.name) ? 1U : 0U);
    }
}

TEST_F(AnUntrustedProgram, ThatClosesTheStreamAloneHasEnded) {
    DriveWorker::scaleTimeouts(0.01);
    other.closeStream();
    worker.tell(drive::write, {}, nullptr);
    try {
        worker.give(std::vector<std::byte>(10), drive::write, nullptr);
        FAIL();
    } catch (const BurnFailure& failure) {
        EXPECT_EQ(failure.error(), DRError::Internal);
    }
}

TEST_F(AnUntrustedProgram, CannotHoldTheLibraryByTakingBytes) {
    constexpr DriveRequest slow = {drive::write.name, std::chrono::hours(2)};
    DriveWorker::scaleTimeouts(1e-5);
    worker.tell(slow, {}, nullptr);
    const std::vector<std::byte> bytes(100);
    const auto end = Clock::now() + std::chrono::seconds(10);
    EXPECT_THROW(
        {
            while (Clock::now() < end) {
                worker.give(bytes, slow, nullptr);
                other.drainStream();
            }
        },
        BurnFailure);
}

TEST_F(AnUntrustedProgram, ThatTakesNoMessageHangs) {
    DriveWorker::scaleTimeouts(0.001);
    const Dictionary fields = {{"node", std::string(60'000, 'x')}};
    EXPECT_THROW(
        {
            for (int i = 0; i < 1000; ++i)
                worker.tell(drive::facts, fields, nullptr);
        },
        BurnFailure);
}

TEST_F(AnUntrustedProgram, CannotHoldTheLibraryWithSignsOfLife) {
    DriveWorker::scaleTimeouts(1e-5);
    std::atomic<bool> isOver = false;
    std::thread program([&] {
        while (!isOver)
            other.send({drive::alive});
    });
    // Long enough between two signs of life on a busy machine.
    EXPECT_EQ(errorOf({"asked", std::chrono::hours(2)}), DRError::DeviceHanging);
    isOver = true;
    program.join();
}

TEST_F(AnUntrustedProgram, ThatSendsGarbageHasEnded) {
    other.sendPacket(std::vector<std::byte>(10));
    EXPECT_EQ(errorOf(drive::facts), DRError::Internal);
}

/// A library that the program does not trust: the test is the library.
class AnUntrustedLibrary : public ::testing::Test, public ChannelPair {
protected:
    ~AnUntrustedLibrary() override { installPlatform({}); }

    /// Executes what was sent, and returns the replies.
    std::vector<Message> replies() {
        other.endMessages();
        EXPECT_EQ(DriveServer(std::move(channel), std::chrono::minutes(1)).run(), 0);
        const Channel library = std::move(other).asChannel();
        std::vector<Message> found;
        Message message;
        while (library.receive(message, Channel::Clock::now()) == Channel::Result::Done)
            found.push_back(message);
        return found;
    }
    void hello(std::int64_t version) { other.send({drive::hello.name, {{"version", version}}}); }
};

TEST_F(AnUntrustedLibrary, OfAnotherVersionGetsNoReply) {
    hello(drive::version + 1);
    other.send({drive::unlock.name});
    EXPECT_TRUE(replies().empty());
}

TEST_F(AnUntrustedLibrary, ThatDoesNotBeginWithItsVersionGetsNoReply) {
    other.send({drive::unlock.name});
    EXPECT_TRUE(replies().empty());
}

TEST_F(AnUntrustedLibrary, GetsAReplyToEachRequestAlsoWithoutADrive) {
    hello(drive::version);
    for (const DriveRequest& request :
         {drive::facts, drive::claim, drive::openSession, drive::write, drive::closeSession,
          drive::finish, drive::beginVerification, drive::readBack, drive::reload})
        other.send({request.name});
    const std::vector<Message> found = replies();
    EXPECT_EQ(found.size(), 9U);
    for (const Message& message : found)
        EXPECT_EQ(message.name, drive::failed);
}

TEST_F(AnUntrustedLibrary, GetsAFailureInPlaceOfAReplyThatIsTooLarge) {
    hello(drive::version);
    ASSERT_TRUE(other.send({drive::accessProblem.name, {{"node", std::string(65'480, 'x')}}}));
    const std::vector<Message> found = replies();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].name, drive::failed);
}

} // namespace
} // namespace quarner
