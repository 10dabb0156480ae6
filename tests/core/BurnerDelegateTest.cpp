// SPDX-License-Identifier: LGPL-2.1-or-later
#include <atomic>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BurnerDelegateTest : public AudioBurnerTest {
protected:
    /// One of everything that a burner reports, under whatever delegate it has.
    void tellAWholeStory() {
        putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
        platform.addDrive({.name = "Writer", .disc = DiscScript{}});
        EXPECT_TRUE(burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"}));
        finishRuns();
        burner->removeItem(burner->child(0, nullptr));
        burner->removeItems({burner->child(0, nullptr)});
        burner->moveBurnItem({0}, 0);
        burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        platform.lastBurn()->play();
        finishRuns();
        burner->burnWithDevice(QuarnerDevice("none"), "Disc");
        burner->clearAll();
    }
};

class IdleDelegate : public QuarnDelegate {};

class EndDelegate : public QuarnDelegate {
public:
    void addFilesProgressDidEnd(const EndReport& /*report*/) override { ++ends; }
    std::atomic<int> ends = 0;
};

TEST_F(BurnerDelegateTest, ADelegateThatProvidesNothingHindersNothing) {
    IdleDelegate idle;
    burner->setDelegate(&idle);
    tellAWholeStory();
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_TRUE(platform.burns().front()->isOver());
}

TEST_F(BurnerDelegateTest, WithoutADelegateEverythingStillHappens) {
    burner->setDelegate(nullptr);
    tellAWholeStory();
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_TRUE(platform.burns().front()->isOver());
}

TEST_F(BurnerDelegateTest, AfterTheDelegateIsSetToNullNoCallIsMade) {
    burner->setDelegate(nullptr);
    EXPECT_EQ(burner->delegate(), nullptr);
    tellAWholeStory();
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(BurnerDelegateTest, ADelegateThatWantsOnlyTheEndHearsItOncePerRunWithAnAcceptedFile) {
    EndDelegate end;
    burner->setDelegate(&end);
    putSongs({"/a.mp3", "/b.mp3"});
    burner->addFiles({"/a.mp3"});
    burner->addFiles({"/b.mp3"});
    burner->addFiles({"/text.txt"});
    finishRuns();
    EXPECT_EQ(end.ends, 2);
}

TEST_F(BurnerDelegateTest, TheEndComesAlsoAfterACancellation) {
    EndDelegate end;
    burner->setDelegate(&end);
    putSongs({"/a.mp3"});
    platform.backgroundQueue().hold();
    burner->addFiles({"/a.mp3"});
    burner->cancelToAddFiles();
    platform.backgroundQueue().release();
    finishRuns();
    EXPECT_EQ(end.ends, 1);
    EXPECT_EQ(count(), 0U);
}

TEST_F(BurnerDelegateTest, ThreeAcceptedFilesAreCountedFromOneToThree) {
    putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
    burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"});
    finishRuns();
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged(a.mp3, 1, 3)",
                            "fileDidAdded(/a.mp3)", "addFilesProgressDidChanged(b.mp3, 2, 3)",
                            "fileDidAdded(/b.mp3)", "addFilesProgressDidChanged(c.mp3, 3, 3)",
                            "fileDidAdded(/c.mp3)", "addFilesProgressDidEnd"));
}

TEST_F(BurnerDelegateTest, TheAudioReportHasBothKeys) {
    putSongs({"/a.mp3"});
    burner->addFiles({"/a.mp3"});
    finishRuns();
    ASSERT_EQ(delegate.reports().size(), 1U);
    EXPECT_EQ(delegate.reports().front(),
              (EndReport{{"protected-files", {}}, {"incompatible-files", {}}}));
}

TEST_F(BurnerDelegateTest, AddingIsReportedInTheBackgroundAndEverythingElseOnTheCallersThread) {
    tellAWholeStory();
    for (const auto& call : delegate.callsWithThreads()) {
        const bool isOfAdding =
            call.text.rfind("addFiles", 0) == 0 || call.text.rfind("file", 0) == 0;
        EXPECT_EQ(call.thread == std::this_thread::get_id(), !isOfAdding) << call.text;
    }
}

TEST_F(BurnerDelegateTest, TheWholeStoryComesInOrder) {
    tellAWholeStory();
    const std::vector<std::string> calls = delegate.calls();
    EXPECT_EQ(calls.front(), "addFilesProgressDidStarted");
    const auto place = [&](const char* text) {
        EXPECT_EQ(std::count(calls.begin(), calls.end(), text), 1) << text;
        return std::find(calls.begin(), calls.end(), text);
    };
    EXPECT_LT(place("addFilesProgressDidEnd"), place("burnItemDidDelete"));
    EXPECT_LT(place("burnItemDidDelete"), place("burnItemsDidDelete(1)"));
    EXPECT_LT(place("burnItemsDidDelete(1)"), place("burnItemDidSorted"));
    EXPECT_LT(place("burnItemDidSorted"), place("burnProgressIsPreparing"));
    EXPECT_LT(place("burnProgressIsPreparing"), place("burnProgressDidDone"));
    EXPECT_LT(place("burnProgressDidDone"), place("burnProgressDidError(Quarn, 0)"));
    EXPECT_EQ(calls.back(), "allFilesDidCleared");
}

} // namespace
} // namespace quarner::testing
