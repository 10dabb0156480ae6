// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <atomic>

#include "quarner/platform/DRKeys.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using testing::HasSubstr;

/// Failing burns. The drive must work again afterwards.
class DriveFault : public testing::TestWithParam<bool>, public OpticalStage {
protected:
    DRLayout layout() { return GetParam() ? audio({320, 320}) : data(1'100'000); }

    /// Burns, and calls `act` when a state is reported.
    std::unique_ptr<BurnLog> burnAndDo(const char* state, std::function<void()> act) {
        loops->setInStep(true);
        const auto burning = makeBurn();
        auto log = observe(burning);
        bool isDone = false;
        log->onRecord = [&](const Dictionary& record) {
            if (BurnLog::stateOf(record) != state || std::exchange(isDone, true))
                return;
            act();
            loops->setInStep(false);
        };
        burning->writeLayout(layout());
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        log->onRecord = nullptr;
        return log;
    }
    /// Cancels the burn when a state is reported, while the burn waits for the delivery.
    std::unique_ptr<BurnLog> burnAndCancelIn(const char* state) {
        loops->setInStep(true);
        const auto burning = makeBurn();
        auto log = observe(burning);
        log->onRecord = [&](const Dictionary& record) {
            if (BurnLog::stateOf(record) == state)
                burning->abort();
        };
        burning->writeLayout(layout());
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        loops->setInStep(false);
        log->onRecord = nullptr;
        return log;
    }
    std::unique_ptr<BurnLog> burnWith(const std::function<void(UnitFaults&)>& set) {
        UnitFaults faults;
        set(faults);
        recorder->setFaults(faults);
        auto log = burn(layout());
        recorder->setFaults({});
        return log;
    }

    /// Cancels the burn during the fourth of these commands; from then on each command is slow.
    std::unique_ptr<BurnLog> burnAndCancelAtFourth(std::uint8_t operation) {
        const auto burning = makeBurn();
        auto log = observe(burning);
        std::atomic<int> seen = 0;
        recorder->setCommandHook([&](std::uint8_t sent) {
            if (sent != operation || ++seen != 4)
                return;
            burning->abort();
            recorder->setDelay(std::chrono::milliseconds(20));
        });
        burning->writeLayout(layout());
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        recorder->setDelay({});
        recorder->setCommandHook({});
        return log;
    }

    /// Expects the drive to be released, and to burn a new disc.
    void expectAsGoodAsNew() {
        expectReleased();
        insert(Medium::blankCDR());
        EXPECT_TRUE(drive->mediaIsBlank());
        const auto log = burn(layout());
        EXPECT_TRUE(log->isDone()) << log->info();
        expectReleased();
    }
};

TEST_P(DriveFault, AWriteErrorFailsTheBurn) {
    const auto log = burnWith([](UnitFaults& faults) { faults.writeErrorAt = 400; });
    EXPECT_EQ(log->code(), codeOf(DRError::WriteFailed)) << log->info();
    EXPECT_THAT(log->info(), HasSubstr("SCSI error"));
    EXPECT_EQ(log->count(DRStatusStateFinishing), 0U);
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ARefusedCueSheetIsNamedAsTheCause) {
    const auto log = burnWith([](UnitFaults& faults) { faults.refusesCueSheet = true; });
    EXPECT_EQ(log->code(), codeOf(DRError::WriteFailed)) << log->info();
    EXPECT_THAT(log->info(), HasSubstr("SEND CUE SHEET"));
    EXPECT_THAT(log->info(), HasSubstr("[5 26 00]"));
    expectAsGoodAsNew();
}

TEST_P(DriveFault, AWriteErrorAtTheVeryFirstSectorFailsTheBurn) {
    const auto log = burnWith([](UnitFaults& faults) { faults.writeErrorAt = -150; });
    EXPECT_EQ(log->code(), codeOf(DRError::WriteFailed)) << log->info();
    expectAsGoodAsNew();
}

TEST_P(DriveFault, AWriteErrorAtTheLastSectorFailsTheBurn) {
    const auto last = [&](std::int32_t end) {
        insert(Medium::blankCDR());
        return burnWith([&](UnitFaults& faults) { faults.writeErrorAt = end - 1; });
    };
    ASSERT_TRUE(burn(layout())->isDone());
    const auto log = last(recorder->writtenDisc()->end());
    EXPECT_EQ(log->code(), codeOf(DRError::WriteFailed)) << log->info();
    EXPECT_EQ(log->count(DRStatusStateSessionClose), 0U) << "told once all sectors are written";
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ADiscThatIsTakenOutFailsTheBurn) {
    const auto log = burnWith([](UnitFaults& faults) { faults.removeMediumAt = 400; });
    EXPECT_EQ(log->code(), codeOf(DRError::MediaNotPresent)) << log->info();
    EXPECT_FALSE(drive->mediaIsPresent());
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ADriveThatIsUnpluggedFailsTheBurnAlsoBeforeAnybodyHearsOfIt) {
    const auto log = burnWith([](UnitFaults& faults) { faults.unplugAt = 400; });
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished)) << log->info();
    EXPECT_EQ(recorder->openCount(), 0);
    EXPECT_FALSE(drive->mediaIsPresent());
    recorder->replug();
    drive = makeDrive(*recorder);
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ADriveThatIsHeardOfAsUnpluggedFailsTheBurnAlsoWhileItStillAnswers) {
    const auto log = burnAndDo(DRStatusStateTrackWrite, [&] { drive->unplug(); });
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished)) << log->info();
    expectReleased();
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_FALSE(drive->ejectMedia());
    EXPECT_EQ(burn(layout())->code(), codeOf(DRError::DeviceVanished));
    drive = makeDrive(*recorder);
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ADiscThatCannotBeReadBackFailsTheBurn) {
    for (const std::int32_t sector : {3, 500}) { // within the first audio
        const auto log = burnWith([&](UnitFaults& faults) { faults.readErrorAt = sector; });
        EXPECT_EQ(log->code(), codeOf(DRError::ReadBackFailed)) << sector << log->info();
        expectAsGoodAsNew();
        insert(Medium::blankCDR());
    }
}

TEST_P(DriveFault, OneWrongByteOnTheDiscFailsTheBurn) {
    for (const std::int32_t sector : {100, 550}) {
        const auto log = burnAndDo(DRStatusStateVerifying, [&] {
            Medium disc = recorder->writtenDisc().value();
            disc.sectors.at(sector).at(2047) ^= std::byte(1);
            recorder->insert(disc);
        });
        EXPECT_EQ(log->code(), codeOf(DRError::VerifyFailed)) << sector << log->info();
        expectReleased();
        insert(Medium::blankCDR());
    }
    expectAsGoodAsNew();
}

TEST_P(DriveFault, AnotherTableOfContentsThanThePlansFailsTheBurn) {
    const auto log = burnAndDo(DRStatusStateVerifying, [&] {
        Medium disc = recorder->writtenDisc().value();
        disc.tracks.back().length += 1;
        recorder->insert(disc);
    });
    EXPECT_EQ(log->code(), codeOf(DRError::VerifyFailed)) << log->info();
    EXPECT_THAT(log->info(), HasSubstr("table of contents"));
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ACancelInAnyStateEndsTheBurnAndFreesTheDrive) {
    for (const char* const state :
         {DRStatusStatePreparing, DRStatusStateSessionOpen, DRStatusStateTrackOpen,
          DRStatusStateTrackWrite, DRStatusStateTrackClose, DRStatusStateSessionClose,
          DRStatusStateFinishing, DRStatusStateVerifying}) {
        SCOPED_TRACE(state);
        insert(Medium::blankCDR());
        const auto log = burnAndCancelIn(state);
        EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
        expectReleased();
    }
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ACancelBeforeTheFirstSectorLeavesTheDiscBlank) {
    for (const char* const state : {DRStatusStatePreparing, DRStatusStateSessionOpen}) {
        const auto log = burnAndCancelIn(state);
        EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
        EXPECT_EQ(countOf(operation::write), 0U);
        EXPECT_TRUE(drive->mediaIsBlank());
    }
}

TEST_P(DriveFault, ACancelInTheMiddleOfATrackStopsTheDrive) {
    const auto log = burnAndCancelAtFourth(operation::write);
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_LT(countOf(operation::write), 20U) << "no silence is written instead";
    expectAsGoodAsNew();
}

TEST_P(DriveFault, ACancelInTheMiddleOfTheVerificationIsNotKeptWaiting) {
    const std::uint8_t reading = GetParam() ? operation::readCD : operation::read;
    const auto log = burnAndCancelAtFourth(reading);
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_LT(countOf(reading), 20U);
    expectReleased();
}

INSTANTIATE_TEST_SUITE_P(, DriveFault, testing::Values(true, false),
                         [](const auto& tested) { return tested.param ? "Audio" : "Data"; });

} // namespace
} // namespace quarner
