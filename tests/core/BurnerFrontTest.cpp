// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <thread>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <typename Burner>
class BothFront : public BurnerTest<Burner> {
protected:
    /// The play time as a background thread reads it while this one turns the main loop.
    std::int64_t durationOf(const std::string& path) {
        std::atomic<bool> isRead = false;
        std::int64_t seconds = -1;
        std::thread reader([&] {
            seconds = this->burner->getMovieDuration(path);
            isRead = true;
        });
        const bool hasCome = this->platform.runUntil([&] { return isRead.load(); });
        reader.join();
        EXPECT_TRUE(hasCome);
        return seconds;
    }
};

TYPED_TEST_SUITE(BothFront, Burners, BurnerNames);

TEST(BurnerFront, TheFactoriesMakeANewBurnerEachTime) {
    const std::shared_ptr<Quarner> audio = Quarner::audioCDBurner();
    EXPECT_NE(std::dynamic_pointer_cast<AudioCDBurner>(audio), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<DataCDBurner>(audio), nullptr);
    EXPECT_NE(audio, Quarner::audioCDBurner());
    const std::shared_ptr<Quarner> data = Quarner::dataCDBurner();
    EXPECT_NE(std::dynamic_pointer_cast<DataCDBurner>(data), nullptr);
    EXPECT_NE(data, Quarner::dataCDBurner());
}

TYPED_TEST(BothFront, ANewBurnerIsEmptyAndWithoutADelegateAndABurn) {
    const TypeParam fresh;
    EXPECT_TRUE(fresh._content.snapshot().empty());
    EXPECT_EQ(fresh.delegate(), nullptr);
    EXPECT_EQ(fresh._burner, nullptr);
}

TEST(BurnerFront, TheBaseIgnoresWhatItCannotDo) {
    RecordingDelegate delegate;
    const auto base = std::make_shared<Quarner>();
    base->setDelegate(&delegate);
    const auto track = std::make_shared<DRTrack>();
    base->removeItem(track);
    base->removeItems({track});
    base->moveBurnItem({0}, 1);
    base->moveItems({track}, nullptr);
    EXPECT_FALSE(base->addFilesInOrder({"/a.mp3"}));
    EXPECT_FALSE(base->addFilesBehind({"/a.mp3"}, nullptr));
    EXPECT_TRUE(base->items().empty());
    base->burnWithDevice(QuarnerDevice("none"), "Disc");
    base->stopBurn();
    EXPECT_EQ(base->numberOfChildrenOfBurnItem(track), 0U);
    EXPECT_EQ(base->child(0, track), nullptr);
    EXPECT_EQ(base->propertyOfBurnItem(track), nullptr);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TYPED_TEST(BothFront, AddFileGivesTheSameCallbacksAndResultAsAddFilesWithThatPath) {
    this->putSongs({"/one.mp3"});
    EXPECT_TRUE(this->burner->addFiles({"/one.mp3"}));
    this->finishRuns();
    const std::vector<std::string> calls = this->delegate.calls();
    this->burner->clearAll();
    this->delegate.forget();
    Quarner& front = *this->burner;
    EXPECT_TRUE(front.addFile("/one.mp3"));
    this->finishRuns();
    EXPECT_EQ(this->delegate.calls(), calls);
    EXPECT_EQ(this->count(), 1U);
    EXPECT_FALSE(front.addFile("/gone.txt"));
}

TYPED_TEST(BothFront, ClearAllEmptiesTheListAndReportsItAtOnce) {
    this->putSongs({"/one.mp3"});
    this->compile({"/one.mp3"});
    ASSERT_EQ(this->count(), 1U);
    this->burner->clearAll();
    EXPECT_EQ(this->count(), 0U);
    EXPECT_THAT(this->delegate.calls(), ElementsAre("allFilesDidCleared"));
}

TYPED_TEST(BothFront, ClearAllOnAnEmptyBurnerStillReports) {
    this->burner->clearAll();
    EXPECT_THAT(this->delegate.calls(), ElementsAre("allFilesDidCleared"));
}

TYPED_TEST(BothFront, ClearAllEmptiesTheListForADelegateThatDoesNotListen) {
    this->putSongs({"/one.mp3"});
    this->compile({"/one.mp3"});
    IdleDelegate idle;
    this->burner->setDelegate(&idle);
    this->burner->clearAll();
    EXPECT_EQ(this->count(), 0U);
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothFront, ClearAllLeavesTheEstimateAndTheCachesAlone) {
    this->burner->supportedFileTypes();
    this->burner->_estimateTotalLength = 7;
    this->burner->clearAll();
    EXPECT_EQ(this->burner->_estimateTotalLength, 7U);
    const bool keepsTypes = this->burner->_supportedFiles != nullptr;
    EXPECT_EQ(keepsTypes, this->isAudio);
}

TYPED_TEST(BothFront, AnItemThatIsStillHeldOutlivesClearAll) {
    this->putSongs({"/one.mp3"});
    this->compile({"/one.mp3"});
    const BurnItemRef item = this->burner->child(0, nullptr);
    this->burner->clearAll();
    EXPECT_EQ(valueFor(*item->properties(), kQuarnItemFilePathKey), Value("/one.mp3"));
}

TYPED_TEST(BothFront, ThePlayTimeOfAFileThatIsMissingOrNoMediaIsZero) {
    this->platform.putFile("/notes.mp3");
    EXPECT_EQ(this->durationOf("/notes.mp3"), 0);
    EXPECT_EQ(this->durationOf("/missing.mp3"), 0);
    this->platform.putMedia("/closed.mp3", {.seconds = 9, .isPlayable = false});
    EXPECT_EQ(this->durationOf("/closed.mp3"), 0);
}

TYPED_TEST(BothFront, ThePlayTimeIsTruncatedToWholeSeconds) {
    this->platform.putMedia("/59.99.mp3", {.seconds = 59.99});
    this->platform.putMedia("/60.mp3", {.seconds = 60.0});
    this->platform.putMedia("/3.9.mp3", {.time = QTTime{.value = 39, .scale = 10}});
    EXPECT_EQ(this->durationOf("/59.99.mp3"), 59);
    EXPECT_EQ(this->durationOf("/60.mp3"), 60);
    EXPECT_EQ(this->durationOf("/3.9.mp3"), 3);
}

TYPED_TEST(BothFront, ANegativePlayTimeIsTruncatedTowardZero) {
    this->platform.putMedia("/odd.mp3", {.time = QTTime{.value = -39, .scale = 10}});
    EXPECT_EQ(this->durationOf("/odd.mp3"), -3);
}

TYPED_TEST(BothFront, APlayTimeWithoutAScaleIsZero) {
    this->platform.putMedia("/odd.mp3", {.time = QTTime{.value = 1000, .scale = 0}});
    EXPECT_EQ(this->durationOf("/odd.mp3"), 0);
}

TYPED_TEST(BothFront, ThePlayTimeSurvivesTheOneDivisionThatOverflows) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    this->platform.putMedia("/odd.mp3", {.time = QTTime{.value = least, .scale = -1}});
    EXPECT_EQ(this->durationOf("/odd.mp3"), least);
    this->platform.putMedia("/odder.mp3", {.time = QTTime{.value = 5, .scale = -1}});
    EXPECT_EQ(this->durationOf("/odder.mp3"), -5);
}

TYPED_TEST(BothFront, TheFileIsOpenedOnTheMainThread) {
    this->platform.putMedia("/one.mp3", {.seconds = 5});
    std::thread::id opener;
    this->platform.onCall(ServiceCall::MovieWithFile,
                          [&](const std::string&) { opener = std::this_thread::get_id(); });
    EXPECT_EQ(this->durationOf("/one.mp3"), 5);
    EXPECT_EQ(opener, std::this_thread::get_id());
}

TYPED_TEST(BothFront, ReadingAPlayTimeReportsAndLogsNothing) {
    this->durationOf("/missing.mp3");
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
    EXPECT_THAT(this->platform.log(), IsEmpty());
}

TYPED_TEST(BothFront, StopBurnBeforeAnyBurnDoesNothing) {
    this->burner->stopBurn();
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
    EXPECT_THAT(this->platform.burns(), IsEmpty());
}

TYPED_TEST(BothFront, CancelWhileNothingIsAddedHasNoEffectOnTheNextRun) {
    this->putSongs({"/one.mp3"});
    this->burner->cancelToAddFiles();
    EXPECT_TRUE(this->burner->addFiles({"/one.mp3"}));
    this->finishRuns();
    EXPECT_EQ(this->count(), 1U);
    EXPECT_EQ(this->delegate.count("addFilesProgressDidCanceled"), 0U);
}

TEST(BurnerFront, TheKeysHaveTheirNames) {
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
