// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineDrive.h"

#include <gmock/gmock.h>

#include "tests/engine/MemoryDrive.h"
#include "tests/support/StepLoops.h"

namespace quarner {
namespace {

using testing::ElementsAre;

class EngineDriveTest : public testing::Test {
protected:
    void claim() { drive->claim({}, {}, stop); }

    /// The code and text with which the drive refuses a burn; `std::nullopt` if it takes one.
    std::optional<std::pair<DRError, std::string>> refusal() {
        try {
            claim();
        } catch (const BurnFailure& failure) {
            return std::pair(failure.error(), failure.info());
        }
        return std::nullopt;
    }
    /// The reason for which the burn was stopped; `std::nullopt` if it was not.
    std::optional<DRError> stopReason() const {
        try {
            stop->throwIfRequested();
        } catch (const BurnFailure& failure) {
            return failure.error();
        }
        return std::nullopt;
    }
    double speed() { return valueFor(drive->status(), DRStatusCurrentSpeedKey).asDouble(); }

    std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<MemoryDrive> drive = std::make_shared<MemoryDrive>(loops);
    std::shared_ptr<StopSignal> stop = std::make_shared<StopSignal>();
};

TEST_F(EngineDriveTest, ADriveThatIsFreeTakesABurn) { EXPECT_EQ(refusal(), std::nullopt); }

TEST_F(EngineDriveTest, AnUnpluggedDriveTakesNoBurn) {
    drive->unplug();
    EXPECT_EQ(refusal(), std::pair(DRError::DeviceVanished, std::string("Memory: unplugged")));
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST_F(EngineDriveTest, ABurningDriveTakesNoOtherBurnUntilItIsReleased) {
    claim();
    EXPECT_EQ(refusal(),
              std::pair(DRError::DeviceBusy, std::string("Memory: another burn is under way")));
    drive->release(std::nullopt);
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(EngineDriveTest, ToUnplugABurningDriveStopsItsBurn) {
    claim();
    EXPECT_EQ(stopReason(), std::nullopt);
    drive->unplug();
    EXPECT_EQ(stopReason(), DRError::DeviceVanished);
}

TEST_F(EngineDriveTest, ToUnplugADriveDoesNotStopABurnThatIsOver) {
    claim();
    drive->release(std::nullopt);
    drive->unplug();
    EXPECT_EQ(stopReason(), std::nullopt);
}

TEST_F(EngineDriveTest, ABurningDriveCanBeLeftAttached) {
    claim();
    EXPECT_FALSE(drive->unplugUnlessBurning());
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_EQ(stopReason(), std::nullopt);
    drive->release(std::nullopt);
    EXPECT_TRUE(drive->unplugUnlessBurning());
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST_F(EngineDriveTest, TheSpeedIsThatOfTheBurnUntilItEnds) {
    claim();
    drive->speedChanged(1200.0);
    EXPECT_EQ(speed(), 1200.0);
    drive->release(std::nullopt);
    EXPECT_EQ(speed(), 0.0);
}

TEST_F(EngineDriveTest, AChangeOfSpeedIsNotReported) {
    const auto center = loops->currentCenter();
    int heard = 0;
    center->addObserver(
        this, [&](const DRNotification&) { ++heard; }, DRDeviceStatusChangedNotification, nullptr);
    claim();
    loops->runPending();
    heard = 0;
    drive->speedChanged(1200.0);
    loops->runPending();
    EXPECT_EQ(heard, 0);
}

TEST_F(EngineDriveTest, AChangeIsReportedToTheRunLoopsWhileThereAreAny) {
    const auto center = loops->currentCenter();
    std::vector<std::shared_ptr<DRObject>> senders;
    center->addObserver(
        this, [&](const DRNotification& heard) { senders.push_back(heard.object); },
        DRDeviceStatusChangedNotification, nullptr);
    drive->release(std::nullopt);
    loops->runPending();
    EXPECT_THAT(senders, ElementsAre(drive));
    loops.reset();
    drive->release(std::nullopt);
    EXPECT_FALSE(center->hasPending());
}

TEST(DiscTooSmall, SaysWhatTheLayoutNeedsAndWhatTheDiscHas) {
    const DiscPlan plan{.tracks = {{.preGap = 50, .length = 400}}};
    EXPECT_EQ(discTooSmall(plan, 300).error(), DRError::MediaTooSmall);
    EXPECT_EQ(discTooSmall(plan, 300).info(), "the layout takes 450 sectors, the disc has 300");
}

} // namespace
} // namespace quarner
