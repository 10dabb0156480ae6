// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "adapters/drive/DriveServer.h"
#include "adapters/optical/DriveWorker.h"
#include "quarner/platform/Platform.h"
#include "tests/support/ChannelPair.h"

namespace quarner {
namespace {

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

    bool isStarted = false;
    DriveWorker worker{DriveRecord{"/dev/sr-none", "", "", "", true}, "Recorder", {}, [this] {
                           // The second one, which unlocks the tray, has ended at once.
                           return std::make_unique<WorkerProcess>(
                               std::exchange(isStarted, true) ? std::move(ChannelPair().channel)
                                                              : std::move(channel));
                       }};
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
