// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <functional>

#include "adapters/optical/GrabbedDrive.h"
#include "tests/optical/DriveStage.h"

namespace quarner {
namespace {

class LostDrive : public testing::Test, public DriveStage {
protected:
    /// Lets something use the drive, which is pulled out after no command, after `step` commands
    /// and so on, until it comes to its end. Answers how many commands were enough.
    unsigned pullInTheMidstOf(const std::function<void()>& use, unsigned step) {
        for (unsigned commands = 0;; commands += step) {
            SCOPED_TRACE(commands);
            recorder->replug();
            recorder->insert(Medium::blankCDR());
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
};

TEST_F(LostDrive, IsLetGoAtWhateverCommandOfAQuestionItWasPulled) {
    bool isBlank = false;
    EXPECT_GT(pullInTheMidstOf([&] { isBlank = drive->mediaIsBlank(); }, 1), 10U);
    EXPECT_TRUE(isBlank);
    expectReleased();
}

TEST_F(LostDrive, IsLetGoWhereverInABurnItWasPulled) {
    const DRLayout layout = audio({300});
    bool isDone = false;
    EXPECT_GT(pullInTheMidstOf([&] { isDone = burn(layout)->isDone(); }, 3), 50U);
    EXPECT_TRUE(isDone);
    expectReleased();
}

} // namespace
} // namespace quarner
