// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<std::string> refusal = {"burnProgressDidStarted",
                                          "burnProgressDidError(Quarn, 0)"};

class AudioBurnTest : public BurnTest {
protected:
    void putBlocksFree(std::optional<std::uint64_t> blocks) {
        drive->change([&](DriveScript& script) { script.disc->blocksFree = blocks; });
    }
    std::vector<std::string> callsOfBurn(const std::string& driveName = "Writer") {
        burner->burnWithDevice(QuarnerDevice(driveName), "Disc");
        return delegate.calls();
    }
};

TEST_F(AudioBurnTest, AnEmptyCompilationIsAnnouncedAndRefusedAtOnce) {
    EXPECT_EQ(callsOfBurn(), refusal);
    EXPECT_FALSE(platform.lastBurn()->isStarted());
}

TEST_F(AudioBurnTest, AnExactFitIsRefused) {
    putBlocksFree(1);
    append(2048);
    EXPECT_EQ(callsOfBurn(), refusal);
}

TEST_F(AudioBurnTest, OneBlockLessThanTheFreeBytesIsAccepted) {
    putBlocksFree(1);
    append(2047);
    EXPECT_THAT(callsOfBurn(), ElementsAre("burnProgressDidStarted"));
    EXPECT_TRUE(platform.lastBurn()->isStarted());
}

TEST_F(AudioBurnTest, BlocksAreComparedWithBytesUnconverted) {
    putBlocksFree(10);
    append(1000); // far more than 10 blocks, but fewer than 20480 bytes
    EXPECT_THAT(callsOfBurn(), ElementsAre("burnProgressDidStarted"));
}

TEST_F(AudioBurnTest, TheEstimateIsTheSumOverAllTracksIncludingTheirPreGaps) {
    burner->_content.append(trackOf(300, 150));
    append(1000);
    callsOfBurn();
    EXPECT_EQ(burner->_estimateTotalLength, 1450U);
    burner->removeItem(burner->child(0, nullptr));
    callsOfBurn();
    EXPECT_EQ(burner->_estimateTotalLength, 1000U);
}

TEST_F(AudioBurnTest, ADriveWithoutADiscRefuses) {
    append(1);
    drive->ejectMedia();
    EXPECT_EQ(callsOfBurn(), refusal);
}

TEST_F(AudioBurnTest, ADiscOfWhichNothingIsKnownRefuses) {
    append(1);
    drive->change([](DriveScript& script) { script.disc->hasMediaInfo = false; });
    EXPECT_EQ(callsOfBurn(), refusal);
}

TEST_F(AudioBurnTest, AHandleWithoutADriveRefuses) {
    append(1);
    EXPECT_EQ(callsOfBurn("no such drive"), refusal);
    EXPECT_EQ(platform.lastBurn()->device(), nullptr);
}

TEST_F(AudioBurnTest, AMissingEntryOfFreeBlocksRefuses) {
    append(1);
    putBlocksFree(std::nullopt);
    EXPECT_EQ(callsOfBurn(), refusal);
}

TEST_F(AudioBurnTest, ARefusedBurnObjectStaysUnstartedAndUnobserved) {
    callsOfBurn();
    delegate.forget();
    const auto burn = platform.lastBurn();
    EXPECT_EQ(burner->_burner, burn);
    say(burn, {.state = DRStatusStatePreparing});
    EXPECT_THAT(delegate.calls(), IsEmpty());
    burner->stopBurn();
    finishRuns();
    EXPECT_TRUE(burn->isAborted());
    EXPECT_THAT(delegate.calls(), IsEmpty());
    append(1);
    burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
    EXPECT_NE(burner->_burner, burn);
    EXPECT_TRUE(platform.lastBurn()->isStarted());
}

TEST_F(AudioBurnTest, TheStartIsReportedBeforeAnythingIsDone) {
    append(1);
    std::size_t burnsWhenStarted = 99;
    delegate.whenCalled = [&](const std::string&) { burnsWhenStarted = platform.burns().size(); };
    callsOfBurn();
    EXPECT_EQ(burnsWhenStarted, 0U);
}

TEST_F(AudioBurnTest, TheBurnIsGivenTheDriveTheTracksInOrderAndTheSettings) {
    append(1);
    append(2);
    callsOfBurn();
    const auto burn = platform.lastBurn();
    EXPECT_EQ(burn->device(), drive);
    EXPECT_THAT(burn->layout(), ElementsAre(burner->child(0, nullptr), burner->child(1, nullptr)));
    EXPECT_EQ(burn->properties(), (Dictionary{{"DRBurnAppendableKey", false},
                                              {"DRBurnOverwriteDiscKey", true},
                                              {"DRBurnVerifyDiscKey", true},
                                              {"DRBurnRequestedSpeedKey", 3900}}));
}

TEST_F(AudioBurnTest, WithoutAListOfSpeedsTheSettingsHaveThreeKeys) {
    append(1);
    drive->change([](DriveScript& script) { script.disc->speeds = std::nullopt; });
    callsOfBurn();
    EXPECT_EQ(platform.lastBurn()->properties(), (Dictionary{{"DRBurnAppendableKey", false},
                                                             {"DRBurnOverwriteDiscKey", true},
                                                             {"DRBurnVerifyDiscKey", true}}));
}

TEST_F(AudioBurnTest, AnEmptyListOfSpeedsAsksForNone) {
    append(1);
    drive->change([](DriveScript& script) { script.disc->speeds = Array{}; });
    callsOfBurn();
    EXPECT_EQ(platform.lastBurn()->properties().size(), 3U);
    EXPECT_TRUE(platform.lastBurn()->isStarted());
}

TEST_F(AudioBurnTest, ARefusedBurnHasItsSettingsToo) {
    callsOfBurn();
    EXPECT_EQ(platform.lastBurn()->properties().size(), 4U);
    EXPECT_THAT(platform.lastBurn()->layout(), IsEmpty());
}

TEST_F(AudioBurnTest, TheTextBlockHoldsTheTitlesOfTheDiscAndItsTracks) {
    append(1);
    append(1);
    burner->burnWithDevice(QuarnerDevice("Writer"), "Mix");
    const auto title = [&](std::int64_t track) {
        return burner->_textBlock->object(DRCDTextTitleKey, track);
    };
    EXPECT_EQ(title(0), Value("Mix"));
    EXPECT_EQ(title(1), Value("Track 1"));
    EXPECT_EQ(title(2), Value("Track 2"));
    EXPECT_TRUE(title(3).isNull());
    EXPECT_EQ(platform.lastBurn()->properties().size(), 4U);
    EXPECT_EQ(platform.lastBurn()->layout().size(), 2U);
}

TEST_F(AudioBurnTest, TheTextBlockIsFilledAlsoForARefusedBurn) {
    burner->burnWithDevice(QuarnerDevice("Writer"), "Mix");
    EXPECT_EQ(burner->_textBlock->object(DRCDTextTitleKey, 0), Value("Mix"));
}

TEST_F(AudioBurnTest, WithoutADiscNameTheTitleOfTheDiscIsLeftAlone) {
    append(1);
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    EXPECT_TRUE(burner->_textBlock->object(DRCDTextTitleKey, 0).isNull());
    burner->burnWithDevice(QuarnerDevice("Writer"), "First");
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    EXPECT_EQ(burner->_textBlock->object(DRCDTextTitleKey, 0), Value("First"));
}

TEST_F(AudioBurnTest, AnEmptyDiscNameIsAName) {
    append(1);
    burner->burnWithDevice(QuarnerDevice("Writer"), "");
    EXPECT_EQ(burner->_textBlock->object(DRCDTextTitleKey, 0), Value(""));
}

TEST_F(AudioBurnTest, TheTextBlockIsMadeWithoutALanguageAndInIsoLatin1) {
    EXPECT_EQ(burner->_textBlock->language(), "");
    EXPECT_EQ(burner->_textBlock->encoding(), 5U);
}

TEST_F(AudioBurnTest, NoRecordArrivesBeforeTheCallHasReturned) {
    append(1);
    platform.playBurns();
    EXPECT_THAT(callsOfBurn(), ElementsAre("burnProgressDidStarted"));
    finishRuns();
    EXPECT_EQ(delegate.calls().back(), "burnProgressDidDone");
}

TEST_F(AudioBurnTest, ALayoutOnceHandedOverDoesNotChangeWithTheList) {
    const auto burn = start();
    burner->clearAll();
    EXPECT_EQ(burn->layout().size(), 1U);
}

TEST_F(AudioBurnTest, StopBurnCancelsTheBurnUnderWay) {
    const auto burn = start();
    burner->stopBurn();
    EXPECT_THAT(delegate.calls(), IsEmpty());
    finishRuns();
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidCanceled"));
    EXPECT_EQ(burner->_burner, nullptr);
}

TEST_F(AudioBurnTest, StopBurnAfterTheEndFindsNothing) {
    const auto burn = start();
    say(burn, {.state = DRStatusStateDone});
    burner->stopBurn();
    EXPECT_FALSE(burn->isAborted());
}

TEST_F(AudioBurnTest, AnEarlierBurnObjectIsReplacedWithoutBeingAborted) {
    const auto first = start();
    const auto second = start();
    EXPECT_NE(first, second);
    EXPECT_FALSE(first->isAborted());
    EXPECT_EQ(burner->_burner, second);
    burner->stopBurn();
    EXPECT_TRUE(second->isAborted());
    EXPECT_FALSE(first->isAborted());
}

TEST_F(AudioBurnTest, AReplacedBurnStillReportsAndItsEndClearsTheNewOne) {
    const auto first = start();
    const auto second = start();
    say(first, {.state = DRStatusStatePreparing});
    say(second, {.state = DRStatusStateFinishing});
    say(first, {.state = DRStatusStateDone});
    EXPECT_EQ(burner->_burner, nullptr);
    say(first, {.state = DRStatusStatePreparing}); // no longer observed
    say(second, {.state = DRStatusStateVerifying});
    say(second, {.state = DRStatusStateDone});
    say(second, {.state = DRStatusStateDone});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressIsPreparing", "burnProgressIsFinishing",
                                              "burnProgressDidDone", "burnProgressIsVerifying",
                                              "burnProgressDidDone"));
}

TEST_F(AudioBurnTest, ABurnGoesOnWithoutItsBurner) {
    const auto burn = start();
    burner.reset();
    say(burn, {.state = DRStatusStatePreparing});
    say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_FALSE(burn->isAborted());
}

TEST_F(AudioBurnTest, ABurnerMayBeDestroyedInItsLastCallback) {
    const auto burn = start();
    delegate.whenCalled = [&](const std::string&) { burner.reset(); };
    say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidDone"));
}

TEST_F(AudioBurnTest, TwoBurnersHearOnlyOfTheirOwnBurns) {
    const auto first = start();
    RecordingDelegate otherDelegate;
    const auto other = std::make_shared<OpenAudioCDBurner>();
    other->setDelegate(&otherDelegate);
    other->_content.append(trackOf(300, 150));
    other->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    otherDelegate.forget();
    say(first, {.state = DRStatusStatePreparing});
    say(platform.lastBurn(), {.state = DRStatusStateFinishing});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressIsPreparing"));
    EXPECT_THAT(otherDelegate.calls(), ElementsAre("burnProgressIsFinishing"));
}

TEST_F(AudioBurnTest, TheCapacityTestMayPassAndTheBurnStillBeRefused) {
    append(1);
    putBlocksFree(0);
    EXPECT_FALSE(burner->isContentOverflowForDevice(QuarnerDevice("Writer")));
    EXPECT_EQ(callsOfBurn(), refusal);
}

TEST_F(AudioBurnTest, ABurnThatCannotBeginFailsThroughTheRunLoop) {
    platform.fail(ServiceCall::WriteLayout);
    append(1);
    EXPECT_THAT(callsOfBurn(), ElementsAre("burnProgressDidStarted"));
    finishRuns();
    ASSERT_EQ(delegate.errors().size(), 1U);
    EXPECT_EQ(delegate.errors()[0].code, signedCode(DRError::WriteFailed));
}

} // namespace
} // namespace quarner::testing
