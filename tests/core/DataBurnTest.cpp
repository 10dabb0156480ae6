// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DataBurn : public DataBurnerTest {
protected:
    DataBurn() {
        putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
        compile({"/a.mp3", "/b.mp3", "/c.mp3"});
    }
    void burn(const std::optional<std::string>& name = "Disc") {
        burner->burnWithDevice(QuarnerDevice("Writer"), name);
    }
    /// The root folder that the last burn was given.
    std::shared_ptr<const DRFolder> root() const {
        return platform.lastBurn()->layout().at(0)->rootFolder;
    }
    void putBlocksFree(std::optional<std::uint64_t> blocks) {
        drive->change([&](DriveScript& script) { script.disc->blocksFree = blocks; });
    }

    const std::vector<std::string> refusal = {"burnProgressDidStarted",
                                              "burnProgressDidError(Quarn, 0)"};
    std::shared_ptr<ScriptedDrive> drive =
        platform.addDrive({.name = "Writer", .disc = DiscScript{}});
};

TEST_F(DataBurn, AHandleWithoutADriveDoesNothingAtAll) {
    burn();
    const auto before = burner->_burner;
    delegate.forget();
    burner->burnWithDevice(QuarnerDevice("no such drive"), "Disc");
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_EQ(burner->_burner, before);
    EXPECT_EQ(platform.burns().size(), 1U);
}

TEST_F(DataBurn, ADriveWithoutFreeBytesRefuses) {
    putBlocksFree(0);
    burn();
    EXPECT_EQ(delegate.calls(), refusal);
    EXPECT_FALSE(platform.lastBurn()->isStarted());
    EXPECT_EQ(burner->_burner, platform.lastBurn()) << "it stays, unstarted";
}

TEST_F(DataBurn, AnExactFitOfBlocksAndBytesIsRefusedAndOneLessIsNot) {
    putBlocksFree(1);
    platform.setDataEstimate(2048);
    burn();
    EXPECT_EQ(delegate.calls(), refusal);
    platform.setDataEstimate(2047);
    burn();
    EXPECT_TRUE(platform.lastBurn()->isStarted());
}

TEST_F(DataBurn, TheSettingsHaveTheDrivesLastSpeed) {
    burn();
    EXPECT_EQ(platform.lastBurn()->properties(), (Dictionary{{DRBurnAppendableKey, false},
                                                             {DRBurnOverwriteDiscKey, true},
                                                             {DRBurnVerifyDiscKey, true},
                                                             {DRBurnRequestedSpeedKey, 3900}}));
}

TEST_F(DataBurn, TheSpeedIsTheLastOfASecondAnswer) {
    int queries = 0;
    platform.onCall(ServiceCall::DriveStatus, [&](const std::string&) {
        if (++queries == 2)
            drive->change([](DriveScript& script) { script.disc->speeds = Array{75, 150}; });
    });
    burn();
    EXPECT_EQ(valueFor(platform.lastBurn()->properties(), DRBurnRequestedSpeedKey), Value(150));
}

TEST_F(DataBurn, WithoutAListOfSpeedsTheSettingsHaveNone) {
    drive->change([](DriveScript& script) { script.disc->speeds.reset(); });
    burn();
    EXPECT_EQ(platform.lastBurn()->properties(), (Dictionary{{DRBurnAppendableKey, false},
                                                             {DRBurnOverwriteDiscKey, true},
                                                             {DRBurnVerifyDiscKey, true}}));
}

TEST_F(DataBurn, TheRootFolderHoldsTheItemsInTheirOrderAndIsJolietOnly) {
    burner->moveBurnItem({2}, 0);
    burn("Größte Hits */:");
    EXPECT_EQ(root()->name(), "Größte Hits */:");
    EXPECT_EQ(root()->explicitFilesystemMask(), 2U);
    std::vector<BurnItemRef> children(root()->children().begin(), root()->children().end());
    EXPECT_THAT(children, ElementsAre(burner->child(0, nullptr), burner->child(1, nullptr),
                                      burner->child(2, nullptr)));
    EXPECT_EQ(root()->children().at(0)->sourcePath(), "/c.mp3");
}

TEST_F(DataBurn, TheLayoutIsOneDataTrack) {
    burn();
    EXPECT_EQ(platform.lastBurn()->layout().size(), 1U);
}

TEST_F(DataBurn, NoTitleIsPutIntoTheTextBlock) {
    burn("Mix");
    ASSERT_TRUE(platform.lastBurn()->isStarted());
    for (const std::int64_t track : {0, 1, 2, 3})
        EXPECT_TRUE(burner->_textBlock->object(DRCDTextTitleKey, track).isNull()) << track;
}

TEST_F(DataBurn, AnEmptyCompilationIsBurntLikeAnyOther) {
    burner->clearAll();
    delegate.forget();
    burn();
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidStarted"));
    EXPECT_TRUE(platform.lastBurn()->isStarted());
    EXPECT_THAT(root()->children(), IsEmpty());
}

TEST_F(DataBurn, ProgressAlwaysComesWithNoTimeLeft) {
    burn();
    platform.lastBurn()->post({.state = DRStatusStateTrackWrite, .fraction = 0.5, .speed = 10});
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(delegate.count("burnProgressDidChanaged(0.5, 0)"), 1U);
    EXPECT_EQ(burner->_estimateTotalLength, 0U);
}

TEST_F(DataBurn, TheStatusIsReportedToTheEndAndTheBurnLetGo) {
    platform.playBurns();
    burn();
    ASSERT_TRUE(platform.runUntilIdle());
    const std::vector<std::string> calls = delegate.calls();
    EXPECT_EQ(calls.front(), "burnProgressDidStarted");
    EXPECT_EQ(calls.back(), "burnProgressDidDone");
    EXPECT_EQ(delegate.count("burnProgressIsWriteingTrack(1, 1)") > 0, true);
    EXPECT_EQ(burner->_burner, nullptr);
}

TEST_F(DataBurn, AStoppedBurnIsCancelled) {
    burn();
    burner->stopBurn();
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(delegate.calls().back(), "burnProgressDidCanceled");
}

/// Overrides only the first call of a refused burn.
class OnlyTheStart : public QuarnDelegate {
public:
    int starts = 0;
    void burnProgressDidStarted() override { ++starts; }
};

TEST_F(DataBurn, ARefusalIsSilentForADelegateThatDoesNotTakeErrors) {
    OnlyTheStart onlyTheStart;
    burner->setDelegate(&onlyTheStart);
    putBlocksFree(0);
    burn();
    EXPECT_EQ(onlyTheStart.starts, 1);
}

} // namespace
} // namespace quarner::testing
