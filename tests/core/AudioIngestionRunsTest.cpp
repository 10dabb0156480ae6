// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

class AudioIngestionRunsTest : public AudioBurnerTest {
protected:
    /// Songs at PREFIX00.mp3 and so on.
    std::vector<std::string> manySongs(const std::string& prefix, int number) {
        std::vector<std::string> songs;
        for (int i = 0; i < number; ++i) {
            songs.push_back(prefix + static_cast<char>('0' + i / 10) +
                            static_cast<char>('0' + i % 10) + ".mp3");
            platform.putSong(songs.back(), {.seconds = 10});
        }
        return songs;
    }
};

TEST_F(AudioIngestionRunsTest, ACancelDuringTheThirdOfTenFilesStopsBeforeTheFourth) {
    const std::vector<std::string> songs = manySongs("/s", 10);
    platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == songs[2])
            burner->cancelToAddFiles();
    });
    EXPECT_TRUE(burner->addFiles(songs));
    finishRuns();
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted",
                            "addFilesProgressDidChanged(s00.mp3, 1, 10)", "fileDidAdded(/s00.mp3)",
                            "addFilesProgressDidChanged(s01.mp3, 2, 10)", "fileDidAdded(/s01.mp3)",
                            "addFilesProgressDidChanged(s02.mp3, 3, 10)", "fileDidAdded(/s02.mp3)",
                            "addFilesProgressDidCanceled", "addFilesProgressDidEnd"));
    EXPECT_EQ(count(), 3U);
}

TEST_F(AudioIngestionRunsTest, TheReportAfterACancelHoldsWhatWasRefusedUntilThen) {
    const std::vector<std::string> songs = manySongs("/s", 3);
    platform.removeFile(songs[0]);
    platform.putFile(songs[0]);
    platform.putFile("/x.txt");
    platform.onCall(ServiceCall::MovieWithFile,
                    [&](const std::string&) { burner->cancelToAddFiles(); });
    burner->addFiles({songs[0], songs[1], songs[2], "/x.txt"});
    finishRuns();
    ASSERT_EQ(delegate.reports().size(), 1U);
    EXPECT_EQ(delegate.reports()[0],
              (EndReport{{"protected-files", {}}, {"incompatible-files", {"/x.txt", songs[0]}}}));
}

TEST_F(AudioIngestionRunsTest, ACancelAfterTheLastFileHasBegunChangesNothing) {
    const std::vector<std::string> songs = manySongs("/s", 2);
    platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == songs[1])
            burner->cancelToAddFiles();
    });
    burner->addFiles(songs);
    finishRuns();
    EXPECT_EQ(count(), 2U);
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 0U);
}

TEST_F(AudioIngestionRunsTest, OneCancelStopsBothRuns) {
    const std::vector<std::string> first = manySongs("/a", 2);
    const std::vector<std::string> second = manySongs("/b", 2);
    platform.backgroundQueue().hold();
    burner->addFiles(first);
    burner->addFiles(second);
    burner->cancelToAddFiles();
    platform.backgroundQueue().release();
    finishRuns();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 2U);
    EXPECT_EQ(delegate.count("addFilesProgressDidEnd"), 2U);
}

TEST_F(AudioIngestionRunsTest, ANewCallUndoesACancelForTheRunsThatStillWait) {
    const std::vector<std::string> first = manySongs("/a", 2);
    const std::vector<std::string> second = manySongs("/b", 2);
    platform.backgroundQueue().hold();
    burner->addFiles(first);
    burner->cancelToAddFiles();
    burner->addFiles(second);
    platform.backgroundQueue().release();
    finishRuns();
    EXPECT_EQ(count(), 4U);
}

TEST_F(AudioIngestionRunsTest, EachRunHasAReportOfItsOwn) {
    manySongs("/a", 2);
    platform.putFile("/x.txt");
    platform.putFile("/y.txt");
    platform.backgroundQueue().hold();
    burner->addFiles({"/a00.mp3", "/x.txt"});
    burner->addFiles({"/a01.mp3", "/y.txt"});
    platform.backgroundQueue().releaseOne(1);
    finishRuns();
    platform.backgroundQueue().release();
    finishRuns();
    ASSERT_EQ(delegate.reports().size(), 2U);
    EXPECT_THAT(delegate.reports()[0].at("incompatible-files"), ElementsAre("/y.txt"));
    EXPECT_THAT(delegate.reports()[1].at("incompatible-files"), ElementsAre("/x.txt"));
}

TEST_F(AudioIngestionRunsTest, ARunKeepsItsBurnerAlive) {
    const std::vector<std::string> songs = manySongs("/s", 2);
    platform.backgroundQueue().hold();
    burner->addFiles(songs);
    const std::weak_ptr<OpenAudioCDBurner> watched = burner;
    burner.reset();
    EXPECT_FALSE(watched.expired());
    platform.backgroundQueue().release();
    finishRuns();
    EXPECT_EQ(delegate.count("addFilesProgressDidEnd"), 1U);
    EXPECT_TRUE(watched.expired());
}

TEST_F(AudioIngestionRunsTest, TheCallReturnsBeforeTheRunHasBegun) {
    const std::vector<std::string> songs = manySongs("/s", 1);
    platform.backgroundQueue().hold();
    EXPECT_TRUE(burner->addFiles(songs));
    EXPECT_EQ(delegate.calls().size(), 0U);
    EXPECT_EQ(platform.calls(ServiceCall::MovieWithFile), 0U);
}

TEST_F(AudioIngestionRunsTest, TwoOverlappingRunsLoseNothingWhileTheHostReadsTheList) {
    const std::vector<std::string> first = manySongs("/a", 60);
    const std::vector<std::string> second = manySongs("/b", 60);
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
        std::uint64_t largest = 0;
        while (!isOver) {
            const std::uint64_t now = count();
            EXPECT_GE(now, largest);
            largest = now;
            for (std::uint64_t i = 0; i < now; ++i)
                EXPECT_NE(burner->propertyOfBurnItem(burner->child(i, nullptr)), nullptr);
            burner->usedCapacity();
        }
    });
    platform.backgroundQueue().hold();
    burner->addFiles(first);
    burner->addFiles(second);
    platform.backgroundQueue().release();
    const bool haveEnded = platform.runUntilIdle();
    isOver = true;
    reader.join();
    ASSERT_TRUE(haveEnded);

    const std::vector<std::string> all = paths();
    ASSERT_EQ(all.size(), 120U);
    const auto ofRun = [&](char run) {
        std::vector<std::string> songs;
        std::copy_if(all.begin(), all.end(), std::back_inserter(songs),
                     [&](const std::string& path) { return path[1] == run; });
        return songs;
    };
    EXPECT_EQ(ofRun('a'), first);
    EXPECT_EQ(ofRun('b'), second);
    EXPECT_EQ(burner->usedCapacity(), 120U * 12U);
}

TEST_F(AudioIngestionRunsTest, TheHostMayEditTheListWhileARunAppends) {
    const std::vector<std::string> songs = manySongs("/s", 40);
    burner->addFiles(songs);
    std::vector<BurnItemRef> removed;
    ASSERT_TRUE(platform.runUntil([&] {
        if (const BurnItemRef item = burner->child(0, nullptr); item && removed.size() < 20) {
            removed.push_back(item);
            burner->removeItem(item);
        }
        return delegate.count("addFilesProgressDidEnd") == 1;
    }));
    EXPECT_EQ(count(), 40U - removed.size());
    EXPECT_EQ(delegate.deleted(), removed);
}

TEST_F(AudioIngestionRunsTest, AMainQueueThatIsHeldHoldsOnlyTheRunUp) {
    const std::vector<std::string> songs = manySongs("/s", 2);
    platform.mainQueue().hold();
    burner->addFiles(songs);
    finishRuns();
    burner->cancelToAddFiles();
    platform.mainQueue().release();
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/s00.mp3"));
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 1U);
}

} // namespace
} // namespace quarner::testing
