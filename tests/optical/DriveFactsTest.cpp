// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <atomic>

#include "quarner/platform/DRKeys.h"
#include "tests/optical/FactsOf.h"
#include "tests/support/MediaOf.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using testing::ElementsAre;

Medium appendable() {
    Medium medium = Medium::audioCD({300, 400});
    medium.kind = Medium::Kind::CDR;
    medium.state = Medium::State::Appendable;
    return medium;
}

class DriveFacts : public testing::Test, public OpticalStage {};

TEST_F(DriveFacts, OfABlankDisc) {
    EXPECT_EQ(factsOf(*drive), "CDR blank appendable 0/359847");
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_FALSE(drive->mediaIsTransitioning());
    EXPECT_EQ(drive->mediaSpaceUsed(), DRMSF::msf());
    EXPECT_EQ(drive->mediaSpaceFree(), DRMSF::msfWithFrames(359'847));
    expectReleased();
}

TEST_F(DriveFacts, AreTheSpeedsOfTheDiscInBlocksPerSecond) {
    const Dictionary media = mediaOf(*drive);
    const Array* speeds = valueFor(media, DRDeviceBurnSpeedsKey).asArray();
    ASSERT_NE(speeds, nullptr);
    EXPECT_THAT(*speeds, ElementsAre(Value(300), Value(600), Value(1200), Value(1800)));
}

TEST_F(DriveFacts, OfOtherDiscs) {
    insert(Medium::blankCDR(333'000));
    EXPECT_EQ(factsOf(*drive), "CDR blank appendable 0/333000");
    insert(Medium::blankCDRW());
    EXPECT_EQ(factsOf(*drive), "CDRW blank appendable erasable 0/359847");
    insert(rewritable());
    EXPECT_EQ(factsOf(*drive), "CDRW erasable 1000/359847") << "all of it can be used again";
    insert(Medium::audioCD({300, 400}));
    EXPECT_EQ(factsOf(*drive), "CDR 850/0");
    Medium pressed = Medium::dataCD(1000);
    pressed.kind = Medium::Kind::CDROM;
    insert(pressed);
    EXPECT_EQ(factsOf(*drive), "CDROM 1000/0");
    insert(Medium::blankDVD());
    EXPECT_EQ(typeOf(*drive), DRDeviceMediaTypeDVDR);
    EXPECT_TRUE(drive->mediaIsBlank());
    insert(appendable());
    EXPECT_EQ(factsOf(*drive), "CDR appendable 12250/347597");
    expectReleased();
}

TEST_F(DriveFacts, AreNoneWithoutADisc) {
    recorder->removeMedium();
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_FALSE(drive->mediaIsTransitioning());
    EXPECT_FALSE(drive->mediaIsBlank());
    EXPECT_FALSE(drive->mediaIsAppendable());
    EXPECT_EQ(drive->mediaSpaceUsed(), std::nullopt);
    EXPECT_EQ(drive->mediaSpaceFree(), std::nullopt);
    EXPECT_TRUE(mediaOf(*drive).empty());
    expectReleased();
}

TEST_F(DriveFacts, AreAskedOnceForADisc) {
    drive->mediaIsPresent();
    const std::size_t asked = recorder->commands().size();
    EXPECT_GT(asked, 0U);
    factsOf(*drive);
    time += std::chrono::hours(1);
    factsOf(*drive);
    EXPECT_EQ(recorder->commands().size(), asked);
    drive->mediaChanged();
    drive->mediaIsPresent();
    EXPECT_GT(recorder->commands().size(), asked);
}

TEST_F(DriveFacts, ThatWereAskedWhileTheDiscWasChangedAreAskedAgain) {
    std::atomic<bool> isChanged = false;
    recorder->setCommandHook([&](std::uint8_t) {
        if (!isChanged.exchange(true))
            drive->mediaChanged();
    });
    drive->mediaIsPresent();
    EXPECT_TRUE(isChanged);
    const std::size_t asked = recorder->commands().size();
    drive->mediaIsPresent();
    EXPECT_GT(recorder->commands().size(), asked);
    recorder->setCommandHook({});
}

TEST_F(DriveFacts, AreKeptForAMomentWhereNoChangesAreHeard) {
    const auto deaf = makeDrive(*recorder, false);
    EXPECT_TRUE(deaf->mediaIsPresent());
    recorder->removeMedium();
    EXPECT_TRUE(deaf->mediaIsPresent());
    time += OpticalDrive::keptFor;
    EXPECT_FALSE(deaf->mediaIsPresent());
}

} // namespace
} // namespace quarner
