// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <functional>

#include "adapters/drive/GrabbedDrive.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

class LostDrive : public testing::Test, public OpticalStage {
protected:
    /// Calls `use` repeatedly and unplugs the drive during it: after no command, after `step`
    /// commands and so on, until `use` completes. Returns the number of commands that it needed.
    unsigned pullInTheMidstOf(const std::function<void()>& use, unsigned step,
                              const Medium& disc = Medium::blankCDR()) {
        for (unsigned commands = 0;; commands += step) {
            SCOPED_TRACE(commands);
            recorder->replug();
            recorder->insert(disc);
            drive = makeDrive(*recorder);
            UnitFaults faults;
            faults.unplugAfter = commands;
            recorder->setFaults(faults);
            use();
            bed.finishEvents();
            EXPECT_EQ(recorder->openCount(), 0);
            if (isAttached(drive->record()))
                return commands;
        }
    }
    void burnUnlessLost(const DRLayout& layout, const Dictionary& properties) {
        const auto log = burn(layout, properties);
        isDone = log->isDone();
        EXPECT_EQ(log->code(), isDone ? 0 : codeOf(DRError::DeviceVanished)) << log->info();
    }

    bool isDone = false;
};

TEST_F(LostDrive, IsLetGoAtWhateverCommandOfAQuestionItWasPulled) {
    bool isBlank = false;
    EXPECT_GT(pullInTheMidstOf([&] { isBlank = drive->mediaIsBlank(); }, 1), 10U);
    EXPECT_TRUE(isBlank);
    expectReleased();
}

TEST_F(LostDrive, FailsTheBurnAndIsLetGoWhereverInABurnItWasPulled) {
    const DRLayout layout = audio({300});
    EXPECT_GT(pullInTheMidstOf([&] { burnUnlessLost(layout, {}); }, 3), 50U);
    EXPECT_TRUE(isDone);
    expectReleased();
}

TEST_F(LostDrive, FailsTheBurnAndIsLetGoAlsoWhereverInTheBlankingItWasPulled) {
    const DRLayout layout = data(5000);
    const auto burnOver = [&] { burnUnlessLost(layout, {{DRBurnOverwriteDiscKey, true}}); };
    EXPECT_GT(pullInTheMidstOf(burnOver, 2, rewritable()), 50U);
    EXPECT_TRUE(isDone);
    EXPECT_GT(countOf(operation::blank), 20U) << "most of them were pulled after it had begun";
    expectReleased();
}

TEST_F(LostDrive, IsAskedAgainAlsoWhileAnotherDriveBurns) {
    const auto other = bed.plug({});
    const auto otherDrive = makeDrive(*other);
    const auto burning = service->burnForDevice(otherDrive);
    const auto log = observe(burning);
    loops->setInStep(true);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) != DRStatusStateTrackOpen)
            return;
        pullInTheMidstOf([&] { drive->mediaIsBlank(); }, 1);
        EXPECT_TRUE(drive->mediaIsBlank());
        loops->setInStep(false);
    };
    burning->writeLayout(audio({600}));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_TRUE(log->isDone()) << log->info();
}

} // namespace
} // namespace quarner
