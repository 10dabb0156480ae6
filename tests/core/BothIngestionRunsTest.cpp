// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "quarner/platform/Platform.h"
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

template <typename Burner>
class BothIngestionRuns : public BurnerTest<Burner> {
protected:
    /// Songs at PREFIX00.mp3 and so on.
    std::vector<std::string> manySongs(const std::string& prefix, int number) {
        std::vector<std::string> songs;
        for (int i = 0; i < number; ++i) {
            songs.push_back(prefix + static_cast<char>('0' + i / 10) +
                            static_cast<char>('0' + i % 10) + ".mp3");
            this->platform.putSong(songs.back(), {.seconds = 10});
        }
        return songs;
    }
};

TYPED_TEST_SUITE(BothIngestionRuns, Burners, BurnerNames);

TYPED_TEST(BothIngestionRuns, ACancelDuringTheThirdOfTenFilesStopsBeforeTheFourth) {
    const std::vector<std::string> songs = this->manySongs("/s", 10);
    this->platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == songs[2])
            this->burner->cancelToAddFiles();
    });
    EXPECT_TRUE(this->burner->addFiles(songs));
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("addFilesProgressDidStarted",
                            "addFilesProgressDidChanged(s00.mp3, 1, 10)", "fileDidAdded(/s00.mp3)",
                            "addFilesProgressDidChanged(s01.mp3, 2, 10)", "fileDidAdded(/s01.mp3)",
                            "addFilesProgressDidChanged(s02.mp3, 3, 10)", "fileDidAdded(/s02.mp3)",
                            "addFilesProgressDidCanceled", "addFilesProgressDidEnd"));
    EXPECT_EQ(this->count(), 3U);
}

TYPED_TEST(BothIngestionRuns, TheReportAfterACancelHoldsWhatWasRefusedUntilThen) {
    const std::vector<std::string> songs = this->manySongs("/s", 3);
    this->platform.removeFile(songs[0]);
    this->platform.putFile(songs[0]);
    this->platform.putFile("/x.txt");
    this->platform.onCall(ServiceCall::MovieWithFile,
                          [&](const std::string&) { this->burner->cancelToAddFiles(); });
    this->burner->addFiles({songs[0], songs[1], songs[2], "/x.txt"});
    this->finishRuns();
    ASSERT_EQ(this->delegate.reports().size(), 1U);
    EXPECT_EQ(this->delegate.reports()[0], this->reportOf({"/x.txt", songs[0]}));
}

TYPED_TEST(BothIngestionRuns, ACancelAfterTheLastFileHasBegunChangesNothing) {
    const std::vector<std::string> songs = this->manySongs("/s", 2);
    this->platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == songs[1])
            this->burner->cancelToAddFiles();
    });
    this->burner->addFiles(songs);
    this->finishRuns();
    EXPECT_EQ(this->count(), 2U);
    EXPECT_EQ(this->delegate.count("addFilesProgressDidCanceled"), 0U);
}

TYPED_TEST(BothIngestionRuns, OneCancelStopsBothRuns) {
    const std::vector<std::string> first = this->manySongs("/a", 2);
    const std::vector<std::string> second = this->manySongs("/b", 2);
    this->platform.backgroundQueue().hold();
    this->burner->addFiles(first);
    this->burner->addFiles(second);
    this->burner->cancelToAddFiles();
    this->platform.backgroundQueue().release();
    this->finishRuns();
    EXPECT_EQ(this->count(), 0U);
    EXPECT_EQ(this->delegate.count("addFilesProgressDidCanceled"), 2U);
    EXPECT_EQ(this->delegate.count("addFilesProgressDidEnd"), 2U);
}

TYPED_TEST(BothIngestionRuns, ANewCallUndoesACancelForTheRunsThatStillWait) {
    const std::vector<std::string> first = this->manySongs("/a", 2);
    const std::vector<std::string> second = this->manySongs("/b", 2);
    this->platform.backgroundQueue().hold();
    this->burner->addFiles(first);
    this->burner->cancelToAddFiles();
    this->burner->addFiles(second);
    this->platform.backgroundQueue().release();
    this->finishRuns();
    EXPECT_EQ(this->count(), 4U);
}

TYPED_TEST(BothIngestionRuns, ACancelWhileThePathsAreSortedHasNoEffect) {
    const std::vector<std::string> songs = this->manySongs("/s", 3);
    this->platform.setCollation([this](const std::string& a, const std::string& b) {
        this->burner->cancelToAddFiles();
        return a.compare(b);
    });
    this->burner->addFiles(songs);
    this->finishRuns();
    EXPECT_EQ(this->count(), 3U);
}

TYPED_TEST(BothIngestionRuns, TwoRunsMayCallTheDelegateAtTheSameTime) {
    std::atomic<int> inside = 0;
    this->delegate.whenCalled = [&](const std::string& call) {
        if (call != "addFilesProgressDidStarted")
            return;
        ++inside;
        while (inside < 2) // neither call returns before the other one has come
            std::this_thread::yield();
    };
    this->burner->addFiles(this->manySongs("/a", 1));
    this->burner->addFiles(this->manySongs("/b", 1));
    this->finishRuns();
    EXPECT_EQ(this->count(), 2U);
}

/// Runs background work to its end before it returns, which is one of the orders that may come.
class EagerDispatch : public DispatchService {
public:
    void asyncGlobal(std::function<void()> work) override { std::thread(std::move(work)).join(); }
    void syncMain(std::function<void()> work) override { work(); }
    void asyncMain(std::function<void()> work) override { work(); }
};

TYPED_TEST(BothIngestionRuns, ARunMayBeginAndEndBeforeTheCallReturns) {
    const std::vector<std::string> songs = this->manySongs("/s", 2);
    Platform eager = *currentPlatform();
    eager.dispatch = std::make_shared<EagerDispatch>();
    installPlatform(eager);
    EXPECT_TRUE(this->burner->addFiles(songs));
    EXPECT_EQ(this->delegate.calls().front(), "addFilesProgressDidStarted");
    EXPECT_EQ(this->delegate.calls().back(), "addFilesProgressDidEnd");
    EXPECT_EQ(this->count(), 2U);
}

TYPED_TEST(BothIngestionRuns, ARunExaminesItsNextFileWithTheServicesThatAreInstalledThen) {
    const std::vector<std::string> songs = this->manySongs("/s", 2);
    Platform deaf = *currentPlatform();
    deaf.media = nullptr;
    this->platform.onCall(ServiceCall::MovieWithFile,
                          [&](const std::string&) { installPlatform(deaf); });
    this->burner->addFiles(songs);
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre(songs[0]));
    EXPECT_EQ(this->delegate.reports().front(), this->reportOf({songs[1]}));
}

/// Prepares one movie until its run is cancelled, and for as long after that as it may.
class SlowMedia : public MediaService {
public:
    explicit SlowMedia(std::shared_ptr<MediaService> media) : _media(std::move(media)) {}

    std::unique_ptr<QTMovie> movieWithFile(const std::string& path) override {
        return _media->movieWithFile(path);
    }
    bool prepareMovie(const std::string& path, const MayContinue& mayContinue) override {
        if (path != slowPath)
            return true;
        mightContinueBefore = mayContinue();
        whenBegun();
        const auto canceled = std::chrono::steady_clock::now();
        while (mayContinue())
            std::this_thread::yield();
        timeToComplete = std::chrono::steady_clock::now() - canceled;
        return false;
    }
    std::vector<std::string> movieFileTypes(std::uint32_t flags) override {
        return _media->movieFileTypes(flags);
    }

    std::string slowPath;
    std::function<void()> whenBegun;
    bool mightContinueBefore = false;
    std::chrono::steady_clock::duration timeToComplete = {};

private:
    const std::shared_ptr<MediaService> _media;
};

TYPED_TEST(BothIngestionRuns, ACancelInsideAFileEndsTheRunWithoutThatFile) {
    const std::vector<std::string> songs = this->manySongs("/s", 3);
    Platform slow = *currentPlatform();
    const auto media = std::make_shared<SlowMedia>(slow.media);
    media->slowPath = songs[1];
    media->whenBegun = [this] { this->burner->cancelToAddFiles(); };
    slow.media = media;
    installPlatform(slow);
    this->burner->addFiles(songs);
    this->finishRuns();
    EXPECT_TRUE(media->mightContinueBefore);
    EXPECT_GE(media->timeToComplete, std::chrono::milliseconds(500)) << "for a usual file";
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("addFilesProgressDidStarted",
                            "addFilesProgressDidChanged(s00.mp3, 1, 3)", "fileDidAdded(/s00.mp3)",
                            "addFilesProgressDidChanged(s01.mp3, 2, 3)",
                            "addFilesProgressDidCanceled", "addFilesProgressDidEnd"));
    EXPECT_THAT(this->paths(), ElementsAre(songs[0]));
    EXPECT_EQ(this->delegate.reports().front(), this->reportOf({}));
}

TYPED_TEST(BothIngestionRuns, EachRunHasAReportOfItsOwn) {
    this->manySongs("/a", 2);
    this->platform.putFile("/x.txt");
    this->platform.putFile("/y.txt");
    this->platform.backgroundQueue().hold();
    this->burner->addFiles({"/a00.mp3", "/x.txt"});
    this->burner->addFiles({"/a01.mp3", "/y.txt"});
    this->platform.backgroundQueue().releaseOne(1);
    this->finishRuns();
    this->platform.backgroundQueue().release();
    this->finishRuns();
    ASSERT_EQ(this->delegate.reports().size(), 2U);
    EXPECT_THAT(this->delegate.reports()[0].at("incompatible-files"), ElementsAre("/y.txt"));
    EXPECT_THAT(this->delegate.reports()[1].at("incompatible-files"), ElementsAre("/x.txt"));
}

TYPED_TEST(BothIngestionRuns, ARunKeepsItsBurnerAlive) {
    const std::vector<std::string> songs = this->manySongs("/s", 2);
    this->platform.backgroundQueue().hold();
    this->burner->addFiles(songs);
    const std::weak_ptr<TypeParam> watched = this->burner;
    this->burner.reset();
    EXPECT_FALSE(watched.expired());
    this->platform.backgroundQueue().release();
    this->finishRuns();
    EXPECT_EQ(this->delegate.count("addFilesProgressDidEnd"), 1U);
    EXPECT_TRUE(watched.expired());
}

TYPED_TEST(BothIngestionRuns, TheCallReturnsBeforeTheRunHasBegun) {
    const std::vector<std::string> songs = this->manySongs("/s", 1);
    this->platform.backgroundQueue().hold();
    EXPECT_TRUE(this->burner->addFiles(songs));
    EXPECT_EQ(this->delegate.calls().size(), 0U);
    EXPECT_EQ(this->platform.calls(ServiceCall::MovieWithFile), 0U);
}

TYPED_TEST(BothIngestionRuns, TwoOverlappingRunsLoseNothingWhileTheHostReadsTheList) {
    const std::vector<std::string> first = this->manySongs("/a", 60);
    const std::vector<std::string> second = this->manySongs("/b", 60);
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
        std::uint64_t largest = 0;
        while (!isOver) {
            const std::uint64_t now = this->count();
            EXPECT_GE(now, largest);
            largest = now;
            for (std::uint64_t i = 0; i < now; ++i)
                EXPECT_NE(this->burner->propertyOfBurnItem(this->burner->child(i, nullptr)),
                          nullptr);
            this->burner->usedCapacity();
        }
    });
    this->platform.backgroundQueue().hold();
    this->burner->addFiles(first);
    this->burner->addFiles(second);
    this->platform.backgroundQueue().release();
    const bool haveEnded = this->platform.runUntilIdle();
    isOver = true;
    reader.join();
    ASSERT_TRUE(haveEnded);

    const std::vector<std::string> all = this->paths();
    ASSERT_EQ(all.size(), 120U);
    const auto ofRun = [&](char run) {
        std::vector<std::string> songs;
        std::copy_if(all.begin(), all.end(), std::back_inserter(songs),
                     [&](const std::string& path) { return path[1] == run; });
        return songs;
    };
    EXPECT_EQ(ofRun('a'), first);
    EXPECT_EQ(ofRun('b'), second);
}

TYPED_TEST(BothIngestionRuns, TheHostMayEditTheListWhileARunAppends) {
    const std::vector<std::string> songs = this->manySongs("/s", 40);
    this->burner->addFiles(songs);
    std::vector<BurnItemRef> removed;
    ASSERT_TRUE(this->platform.runUntil([&] {
        if (const BurnItemRef item = this->burner->child(0, nullptr); item && removed.size() < 20) {
            removed.push_back(item);
            this->burner->removeItem(item);
        }
        return this->delegate.count("addFilesProgressDidEnd") == 1;
    }));
    EXPECT_EQ(this->count(), 40U - removed.size());
    EXPECT_EQ(this->delegate.deleted(), removed);
}

TYPED_TEST(BothIngestionRuns, AMainQueueThatIsHeldHoldsOnlyTheRunUp) {
    const std::vector<std::string> songs = this->manySongs("/s", 2);
    this->platform.mainQueue().hold();
    this->burner->addFiles(songs);
    this->finishRuns();
    this->burner->cancelToAddFiles();
    this->platform.mainQueue().release();
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/s00.mp3"));
    EXPECT_EQ(this->delegate.count("addFilesProgressDidCanceled"), 1U);
}

} // namespace
} // namespace quarner::testing
