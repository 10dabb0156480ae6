// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "tests/optical/OtherProgram.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

class DriveEjection : public testing::Test, public OpticalStage {
protected:
    void listen() {
        loops->currentCenter()->addObserver(
            this, [this](const DRNotification&) { ++told; }, DRDeviceStatusChangedNotification,
            drive.get());
    }

    std::size_t told = 0;
};

TEST_F(DriveEjection, OpensTheTrayAndTellsOfIt) {
    listen();
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_TRUE(drive->ejectMedia());
    EXPECT_TRUE(recorder->isTrayOpen());
    EXPECT_FALSE(drive->mediaIsPresent());
    loops->runPending();
    EXPECT_EQ(told, 1U);
    EXPECT_FALSE(drive->ejectMedia());
    loops->runPending();
    EXPECT_EQ(told, 1U) << "nothing changed";
    expectReleased();
}

TEST_F(DriveEjection, OpensTheTrayOfAnEmptyDrive) {
    recorder->removeMedium();
    drive->mediaChanged();
    EXPECT_TRUE(drive->ejectMedia());
    EXPECT_TRUE(recorder->isTrayOpen());
}

TEST_F(DriveEjection, PutsOutADiscThatDoesNotGetReady) {
    UnitFaults faults;
    faults.notReady = 1'000'000;
    recorder->setFaults(faults);
    EXPECT_TRUE(drive->ejectMedia());
    EXPECT_TRUE(recorder->isTrayOpen());
}

TEST_F(DriveEjection, FailsWhenTheDriveKeepsItsDisc) {
    UnitFaults faults;
    faults.isTrayStuck = true;
    recorder->setFaults(faults);
    listen();
    EXPECT_FALSE(drive->ejectMedia());
    EXPECT_FALSE(recorder->isTrayOpen());
    loops->runPending();
    EXPECT_EQ(told, 0U);
    expectReleased();
}

TEST_F(DriveEjection, WaitsForThoseWhoOnlyLookAtTheDrive) {
    UnitFaults faults;
    faults.observers = 3;
    recorder->setFaults(faults);
    EXPECT_TRUE(drive->ejectMedia());
    EXPECT_TRUE(recorder->isTrayOpen());
}

TEST_F(DriveEjection, FailsWhenTheyStay) {
    UnitFaults faults;
    faults.observers = 1000;
    recorder->setFaults(faults);
    EXPECT_FALSE(drive->ejectMedia());
    expectReleased();
}

TEST_F(DriveEjection, IsRefusedWhileAnotherProgramHasTheDrive) {
    const OtherProgram other(recorder->node());
    EXPECT_FALSE(drive->ejectMedia());
    EXPECT_FALSE(recorder->isTrayOpen());
}

TEST_F(DriveEjection, IsRefusedByADriveThatIsGone) {
    recorder->unplug();
    EXPECT_FALSE(drive->ejectMedia());
}

} // namespace
} // namespace quarner
