// SPDX-License-Identifier: LGPL-2.1-or-later
#include <atomic>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void addDrives(ScriptedPlatform& platform) {
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    platform.addDrive({.name = "Full", .disc = DiscScript{.blocksFree = 0}});
}

template <typename Burner>
class BothDelegate : public BurnerTest<Burner> {
protected:
    /// Sends one report of each kind, whatever the delegate.
    void tellAWholeStory() {
        this->putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
        addDrives(this->platform);
        EXPECT_TRUE(this->burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"}));
        this->finishRuns();
        this->burner->removeItem(this->burner->child(0, nullptr));
        this->burner->removeItems({this->burner->child(0, nullptr)});
        this->burner->moveBurnItem({0}, 0);
        this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        this->platform.lastBurn()->play();
        this->finishRuns();
        this->burner->burnWithDevice(QuarnerDevice("Full"), "Disc");
        this->burner->clearAll();
    }
};

class EndDelegate : public QuarnDelegate {
public:
    void addFilesProgressDidEnd(const EndReport& /*report*/) override { ++ends; }
    std::atomic<int> ends = 0;
};

TYPED_TEST_SUITE(BothDelegate, Burners, BurnerNames);

TYPED_TEST(BothDelegate, ADelegateThatProvidesNothingHindersNothing) {
    IdleDelegate idle;
    this->burner->setDelegate(&idle);
    this->tellAWholeStory();
    EXPECT_TRUE(this->burner->isContentBlank());
    EXPECT_TRUE(this->platform.burns().front()->isOver());
}

TYPED_TEST(BothDelegate, WithoutADelegateEverythingStillHappens) {
    this->burner->setDelegate(nullptr);
    this->tellAWholeStory();
    EXPECT_TRUE(this->burner->isContentBlank());
    EXPECT_TRUE(this->platform.burns().front()->isOver());
}

TYPED_TEST(BothDelegate, AfterTheDelegateIsSetToNullNoCallIsMade) {
    this->burner->setDelegate(nullptr);
    EXPECT_EQ(this->burner->delegate(), nullptr);
    this->tellAWholeStory();
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothDelegate, ADelegateThatWantsOnlyTheEndHearsItOncePerRunWithAnAcceptedFile) {
    EndDelegate end;
    this->burner->setDelegate(&end);
    this->putSongs({"/a.mp3", "/b.mp3"});
    this->burner->addFiles({"/a.mp3"});
    this->burner->addFiles({"/b.mp3"});
    this->burner->addFiles({"/text.txt"});
    this->finishRuns();
    EXPECT_EQ(end.ends, 2);
}

TYPED_TEST(BothDelegate, TheEndComesAlsoAfterACancellation) {
    EndDelegate end;
    this->burner->setDelegate(&end);
    this->putSongs({"/a.mp3"});
    this->platform.backgroundQueue().hold();
    this->burner->addFiles({"/a.mp3"});
    this->burner->cancelToAddFiles();
    this->platform.backgroundQueue().release();
    this->finishRuns();
    EXPECT_EQ(end.ends, 1);
    EXPECT_EQ(this->count(), 0U);
}

TYPED_TEST(BothDelegate, ThreeAcceptedFilesAreCountedFromOneToThree) {
    this->putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
    this->burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged(a.mp3, 1, 3)",
                            "fileDidAdded(/a.mp3)", "addFilesProgressDidChanged(b.mp3, 2, 3)",
                            "fileDidAdded(/b.mp3)", "addFilesProgressDidChanged(c.mp3, 3, 3)",
                            "fileDidAdded(/c.mp3)", "addFilesProgressDidEnd"));
}

TYPED_TEST(BothDelegate, TheReportHasTheKeysOfItsBurner) {
    this->putSongs({"/a.mp3"});
    this->burner->addFiles({"/a.mp3"});
    this->finishRuns();
    ASSERT_EQ(this->delegate.reports().size(), 1U);
    EXPECT_EQ(this->delegate.reports().front(), this->reportOf({}));
}

TYPED_TEST(BothDelegate, AddingIsReportedInTheBackgroundAndEverythingElseOnTheCallersThread) {
    this->tellAWholeStory();
    for (const auto& call : this->delegate.callsWithThreads()) {
        const bool isOfAdding =
            call.text.rfind("addFiles", 0) == 0 || call.text.rfind("file", 0) == 0;
        EXPECT_EQ(call.thread == std::this_thread::get_id(), !isOfAdding) << call.text;
    }
}

TYPED_TEST(BothDelegate, TheWholeStoryComesInOrder) {
    this->tellAWholeStory();
    const std::vector<std::string> calls = this->delegate.calls();
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
