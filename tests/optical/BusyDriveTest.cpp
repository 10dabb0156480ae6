// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <cerrno>
#include <thread>

#include "adapters/drive/AccessProblem.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tests/optical/LibburnSession.h"
#include "tests/optical/OtherProgram.h"
#include "tests/support/KeptLog.h"
#include "tests/support/optical/OpticalStage.h"
#include "tests/support/optical/nodes/NodeAccess.h"

namespace quarner {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

/// A drive that other programs use, or that this user may not use.
class BusyDrive : public testing::Test, public OpticalStage {
protected:
    static std::chrono::steady_clock::time_point now() { return std::chrono::steady_clock::now(); }
};

TEST_F(BusyDrive, ThatIsFreeAgainInAMomentIsWaitedFor) {
    refuseOpening(recorder->node(), EBUSY, 2);
    EXPECT_TRUE(drive->mediaIsPresent());
    insert(Medium::blankCDR());
    refuseOpening(recorder->node(), EBUSY, 8);
    const auto log = burn(audio({300}));
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_F(BusyDrive, ThatStaysBusyHasNoDiscForAWhileAndIsAskedAgain) {
    {
        const OtherProgram other(recorder->node());
        const auto start = now();
        EXPECT_FALSE(drive->mediaIsPresent());
        EXPECT_LT(now() - start, std::chrono::milliseconds(2500));
        EXPECT_FALSE(drive->ejectMedia());
    }
    EXPECT_FALSE(drive->mediaIsPresent()) << "not asked again at once";
    time += OpticalDrive::keptFor;
    EXPECT_TRUE(drive->mediaIsPresent());
}

TEST_F(BusyDrive, ThatStaysBusyRefusesABurn) {
    const OtherProgram other(recorder->node());
    const auto log = burn(audio({300}));
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceBusy)) << log->info();
    EXPECT_THAT(recorder->commands(), testing::IsEmpty());
}

TEST_F(BusyDrive, IsNotWaitedForWhenTheBurnIsCancelled) {
    const OtherProgram other(recorder->node());
    const auto burning = makeBurn();
    const auto log = observe(burning);
    const auto start = now();
    burning->writeLayout(audio({300}));
    ASSERT_TRUE(loops->runUntil([&] { return !log->states().empty(); })) << "it has begun";
    burning->abort();
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_LT(now() - start, std::chrono::milliseconds(2500));
}

TEST_F(BusyDrive, IsAskedAfreshAfterABurnThatCouldNotHaveIt) {
    ASSERT_TRUE(drive->mediaIsBlank());
    {
        const OtherProgram other(recorder->node());
        const auto burning = makeBurn();
        const auto log = observe(burning);
        burning->writeLayout(audio({300}));
        ASSERT_TRUE(loops->runUntil([&] { return !log->states().empty(); })) << "it has begun";
        recorder->removeMedium();
        drive->mediaChanged();
        EXPECT_TRUE(drive->mediaIsBlank()) << "what is known until the burn is over";
        burning->abort();
        ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    }
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST_F(BusyDrive, AnswersAlsoAfterAnotherUserOfLibburnHasShutItDown) {
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_TRUE(LibburnSession(recorder->node()).isGrabbed());
    drive->mediaChanged();
    EXPECT_TRUE(drive->mediaIsPresent());
}

TEST_F(BusyDrive, IsLeftAloneByQuestionsWhileItBurns) {
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    std::size_t commands = 0;
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) != DRStatusStateTrackClose)
            return;
        commands = recorder->commands().size();
        drive->mediaChanged(); // an event between two queries
        EXPECT_TRUE(drive->mediaIsPresent());
        EXPECT_TRUE(drive->mediaIsBlank());
        EXPECT_EQ(drive->mediaSpaceFree(), DRMSF::msfWithFrames(359'847));
        EXPECT_FALSE(drive->status().empty());
        EXPECT_EQ(recorder->openCount(), 1);
        loops->setInStep(false);
    };
    burning->writeLayout(data(400'000));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_GT(commands, 0U);
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_FALSE(drive->mediaIsBlank());
}

TEST_F(BusyDrive, IsTheBurnsOwnWhileOtherThreadsAsk) {
    const auto burning = makeBurn();
    const auto log = observe(burning);
    std::vector<std::jthread> askers;
    for (int i = 0; i < 3; ++i)
        askers.emplace_back([this, i](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                drive->status();
                drive->mediaIsBlank();
                if (i == 0)
                    drive->mediaChanged();
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        });
    burning->writeLayout(audio({600, 600}));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    askers.clear();
    EXPECT_TRUE(log->isDone()) << log->info();
    expectReleased();
}

TEST_F(BusyDrive, ThatThisUserMayNotOpenSaysSo) {
    refuseOpening(recorder->node(), EACCES, 100);
    EXPECT_FALSE(drive->mediaIsPresent());
    const auto log = burn(audio({300}));
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceNotPermitted));
    EXPECT_THAT(log->info(), HasSubstr(recorder->node() + " may not be opened"));
    refuseOpening(recorder->node(), 0, 0);
}

TEST_F(BusyDrive, HasWhatLibburnReportsInTheLog) {
    const auto kept = std::make_shared<KeptLog>();
    installPlatform({.log = kept});
    UnitFaults faults;
    faults.writeErrorAt = 100;
    recorder->setFaults(faults);
    burn(audio({300}));
    installPlatform({});
    EXPECT_THAT(kept->lines(), Contains(StartsWith("libburn: FATAL: SCSI error on write")));
}

} // namespace
} // namespace quarner
