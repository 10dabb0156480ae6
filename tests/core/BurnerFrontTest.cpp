// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <thread>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BurnerFrontTest : public AudioBurnerTest {
protected:
    /// The play time as a background thread reads it while this one turns the main loop.
    std::int64_t durationOf(const std::string& path) {
        std::atomic<bool> isRead = false;
        std::int64_t seconds = -1;
        std::thread reader([&] {
            seconds = burner->getMovieDuration(path);
            isRead = true;
        });
        const bool hasCome = platform.runUntil([&] { return isRead.load(); });
        reader.join();
        EXPECT_TRUE(hasCome);
        return seconds;
    }
};

class IdleDelegate : public QuarnDelegate {};

TEST(BurnerFront, TheFactoryMakesANewAudioBurnerEachTime) {
    const std::shared_ptr<Quarner> burner = Quarner::audioCDBurner();
    EXPECT_NE(std::dynamic_pointer_cast<AudioCDBurner>(burner), nullptr);
    EXPECT_NE(burner, Quarner::audioCDBurner());
}

TEST(BurnerFront, ANewBurnerIsEmptyAndWithoutADelegateAndABurn) {
    const OpenAudioCDBurner burner;
    EXPECT_TRUE(burner._content.snapshot().empty());
    EXPECT_EQ(burner.delegate(), nullptr);
    EXPECT_EQ(burner._burner, nullptr);
}

TEST(BurnerFront, TheBaseIgnoresWhatItCannotDo) {
    RecordingDelegate delegate;
    const auto base = std::make_shared<Quarner>();
    base->setDelegate(&delegate);
    const auto track = std::make_shared<DRTrack>();
    base->removeItem(track);
    base->removeItems({track});
    base->moveBurnItem({0}, 1);
    base->burnWithDevice(QuarnerDevice("none"), "Disc");
    base->stopBurn();
    EXPECT_EQ(base->numberOfChildrenOfBurnItem(track), 0U);
    EXPECT_EQ(base->child(0, track), nullptr);
    EXPECT_EQ(base->propertyOfBurnItem(track), nullptr);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(BurnerFrontTest, AddFileGivesTheSameCallbacksAndResultAsAddFilesWithThatPath) {
    putSongs({"/one.mp3"});
    EXPECT_TRUE(burner->addFiles({"/one.mp3"}));
    finishRuns();
    const std::vector<std::string> calls = delegate.calls();
    burner->clearAll();
    delegate.forget();
    Quarner& front = *burner;
    EXPECT_TRUE(front.addFile("/one.mp3"));
    finishRuns();
    EXPECT_EQ(delegate.calls(), calls);
    EXPECT_EQ(count(), 1U);
    EXPECT_FALSE(front.addFile("/gone.mp3"));
}

TEST_F(BurnerFrontTest, ClearAllEmptiesTheListAndReportsItAtOnce) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    ASSERT_EQ(count(), 1U);
    burner->clearAll();
    EXPECT_EQ(count(), 0U);
    EXPECT_THAT(delegate.calls(), ElementsAre("allFilesDidCleared"));
}

TEST_F(BurnerFrontTest, ClearAllOnAnEmptyBurnerStillReports) {
    burner->clearAll();
    EXPECT_THAT(delegate.calls(), ElementsAre("allFilesDidCleared"));
}

TEST_F(BurnerFrontTest, ClearAllEmptiesTheListForADelegateThatDoesNotListen) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    IdleDelegate idle;
    burner->setDelegate(&idle);
    burner->clearAll();
    EXPECT_EQ(count(), 0U);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(BurnerFrontTest, ClearAllLeavesTheEstimateAndTheCachesAlone) {
    burner->supportedFileTypes();
    burner->_estimateTotalLength = 7;
    burner->clearAll();
    EXPECT_EQ(burner->_estimateTotalLength, 7U);
    EXPECT_NE(burner->_supportedFiles, nullptr);
}

TEST_F(BurnerFrontTest, AnItemThatIsStillHeldOutlivesClearAll) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    const BurnItemRef item = burner->child(0, nullptr);
    burner->clearAll();
    EXPECT_EQ(valueFor(*item->properties(), kQuarnItemFilePathKey), Value("/one.mp3"));
}

TEST_F(BurnerFrontTest, ThePlayTimeOfAFileThatIsMissingOrNoMediaIsZero) {
    platform.putFile("/notes.mp3");
    EXPECT_EQ(durationOf("/notes.mp3"), 0);
    EXPECT_EQ(durationOf("/missing.mp3"), 0);
    platform.putMedia("/closed.mp3", {.seconds = 9, .isPlayable = false});
    EXPECT_EQ(durationOf("/closed.mp3"), 0);
}

TEST_F(BurnerFrontTest, ThePlayTimeIsTruncatedToWholeSeconds) {
    platform.putMedia("/59.99.mp3", {.seconds = 59.99});
    platform.putMedia("/60.mp3", {.seconds = 60.0});
    platform.putMedia("/3.9.mp3", {.time = QTTime{.value = 39, .scale = 10}});
    EXPECT_EQ(durationOf("/59.99.mp3"), 59);
    EXPECT_EQ(durationOf("/60.mp3"), 60);
    EXPECT_EQ(durationOf("/3.9.mp3"), 3);
}

TEST_F(BurnerFrontTest, ANegativePlayTimeIsTruncatedTowardZero) {
    platform.putMedia("/odd.mp3", {.time = QTTime{.value = -39, .scale = 10}});
    EXPECT_EQ(durationOf("/odd.mp3"), -3);
}

TEST_F(BurnerFrontTest, APlayTimeWithoutAScaleIsZero) {
    platform.putMedia("/odd.mp3", {.time = QTTime{.value = 1000, .scale = 0}});
    EXPECT_EQ(durationOf("/odd.mp3"), 0);
}

TEST_F(BurnerFrontTest, ThePlayTimeSurvivesTheOneDivisionThatOverflows) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    platform.putMedia("/odd.mp3", {.time = QTTime{.value = least, .scale = -1}});
    EXPECT_EQ(durationOf("/odd.mp3"), least);
    platform.putMedia("/odder.mp3", {.time = QTTime{.value = 5, .scale = -1}});
    EXPECT_EQ(durationOf("/odder.mp3"), -5);
}

TEST_F(BurnerFrontTest, TheFileIsOpenedOnTheMainThread) {
    platform.putMedia("/one.mp3", {.seconds = 5});
    std::thread::id opener;
    platform.onCall(ServiceCall::MovieWithFile,
                    [&](const std::string&) { opener = std::this_thread::get_id(); });
    EXPECT_EQ(durationOf("/one.mp3"), 5);
    EXPECT_EQ(opener, std::this_thread::get_id());
}

TEST_F(BurnerFrontTest, ReadingAPlayTimeReportsAndLogsNothing) {
    durationOf("/missing.mp3");
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_THAT(platform.log(), IsEmpty());
}

TEST_F(BurnerFrontTest, StopBurnBeforeAnyBurnDoesNothing) {
    burner->stopBurn();
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_THAT(platform.burns(), IsEmpty());
}

TEST_F(BurnerFrontTest, CancelWhileNothingIsAddedHasNoEffectOnTheNextRun) {
    putSongs({"/one.mp3"});
    burner->cancelToAddFiles();
    EXPECT_TRUE(burner->addFiles({"/one.mp3"}));
    finishRuns();
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 0U);
}

TEST_F(BurnerFrontTest, TheKeysHaveTheirNames) {
    EXPECT_STREQ(kQuarnItemFileSizeKey, "itemFileSize");
    EXPECT_STREQ(kQuarnItemRealFileSizeKey, "itemRealFileSize");
    EXPECT_STREQ(kQuarnItemDisplayNameKey, "itemName");
    EXPECT_STREQ(kQuarnItemFilePathKey, "itemPath");
    EXPECT_STREQ(kQuarnItemIconKey, "itemIcon");
    EXPECT_STREQ(kQuarnItemDurationKey, "itemDuration");
    EXPECT_STREQ(kQuarnItemRealDurationKey, "itemRealDuration");
}

} // namespace
} // namespace quarner::testing
