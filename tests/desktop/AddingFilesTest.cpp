// SPDX-License-Identifier: LGPL-2.1-or-later
#include <atomic>
#include <thread>

#include "quarner/platform/DRTrack.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/AudioFixtures.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string changed(const std::string& name, int index, int of) {
    return "addFilesProgressDidChanged(" + name + ", " + std::to_string(index) + ", " +
           std::to_string(of) + ")";
}

std::string added(const std::string& path) { return "fileDidAdded(" + path + ")"; }

class DesktopAddingFiles : public DesktopTest {
protected:
    /// Expects that earlier calls cause no callback: those of one more run come alone.
    void expectNothingIsHeard() {
        const std::string other = put("six.m4a", "other.m4a");
        ASSERT_TRUE(burner->addFiles({other}));
        ASSERT_TRUE(runUntilCalled("addFilesProgressDidEnd"));
        EXPECT_THAT(delegate.calls(),
                    ElementsAre("addFilesProgressDidStarted", changed("other.m4a", 1, 1),
                                added(other), "addFilesProgressDidEnd"));
    }
};

TEST_F(DesktopAddingFiles, TheOrderIsTheUsersAndIgnoresCase) {
    const std::string b = put("five.mp3", "b.mp3");
    const std::string a = put("five.mp3", "A.mp3");
    compile({b, a});
    EXPECT_THAT(paths(), ElementsAre(a, b));
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", changed("A.mp3", 1, 2), added(a),
                            changed("b.mp3", 2, 2), added(b), "addFilesProgressDidEnd"));
}

TEST_F(DesktopAddingFiles, TheCaseOfEveryLetterIsIgnored) {
    const std::string b = put("five.mp3", "ÄB.mp3");
    const std::string a = put("five.mp3", "äa.mp3");
    compile({b, a});
    EXPECT_THAT(paths(), ElementsAre(a, b));
}

TEST_F(DesktopAddingFiles, EveryCallbackOfARunComesOnABackgroundThread) {
    compile({put("five.mp3", "a.mp3"), put("six.m4a", "b.m4a")});
    for (const RecordingDelegate::Call& call : delegate.callsWithThreads())
        EXPECT_NE(call.thread, std::this_thread::get_id()) << call.text;
}

TEST_F(DesktopAddingFiles, AddFileIsTheSameAsAddFilesWithOnePath) {
    const std::string path = put("five.mp3", "a.mp3");
    compile({path});
    const std::vector<std::string> ofList = delegate.calls();
    delegate.forget();
    burner = Quarner::audioCDBurner();
    burner->setDelegate(&delegate);
    EXPECT_TRUE(burner->addFile(path));
    ASSERT_TRUE(runUntilCalled("addFilesProgressDidEnd"));
    EXPECT_EQ(delegate.calls(), ofList);
}

TEST_F(DesktopAddingFiles, AFileThatIsInTheListAlreadyIsSkippedSilently) {
    const std::string path = put("five.mp3", "a.mp3");
    compile({path});
    delegate.forget();
    EXPECT_FALSE(burner->addFiles({path}));
    expectNothingIsHeard();
    EXPECT_EQ(count(), 2U);
}

TEST_F(DesktopAddingFiles, TheSameFileTwiceInOneCallGivesTwoTracks) {
    const std::string path = put("five.mp3", "a.mp3");
    compile({path, path});
    EXPECT_THAT(paths(), ElementsAre(path, path));
}

TEST_F(DesktopAddingFiles, AnAliasIsAcceptedUnderItsTargetsPath) {
    const std::string target = put("five.mp3", "with blanks.mp3");
    const std::string alias =
        folder.write("a.desktop", "[Desktop Entry]\nType=Link\nName=x\nURL=file://" +
                                      folder.file("with%20blanks.mp3") + "\n");
    compile({alias});
    EXPECT_THAT(paths(), ElementsAre(target));
    EXPECT_FALSE(burner->addFiles({target}));
}

TEST_F(DesktopAddingFiles, ASymbolicLinkIsAcceptedUnderItsOwnPath) {
    std::filesystem::create_symlink(put("five.mp3", "a.mp3"), folder.file("link.mp3"));
    compile({folder.file("link.mp3")});
    EXPECT_THAT(paths(), ElementsAre(folder.file("link.mp3")));
}

TEST_F(DesktopAddingFiles, PathsAreComparedAndKeptAsTheyAreWritten) {
    compileInWorkingDirectory("five.mp3", "a.mp3");
    EXPECT_THAT(paths(), ElementsAre("a.mp3"));
    EXPECT_FALSE(burner->addFiles({"a.mp3"}));
    compile({"./a.mp3"});
    compile({folder.file("a.mp3")});
    EXPECT_THAT(paths(), ElementsAre("a.mp3", "./a.mp3", folder.file("a.mp3")));
}

TEST_F(DesktopAddingFiles, ARelativePathCountsFromTheWorkingDirectoryOfTheMoment) {
    compileInWorkingDirectory("five.mp3", "a.mp3");
    EXPECT_EQ(burner->getMovieDuration("a.mp3"), 5);
    std::filesystem::current_path("/");
    EXPECT_EQ(burner->getMovieDuration("a.mp3"), 0);
    burner->clearAll();
    EXPECT_FALSE(burner->addFiles({"a.mp3"}));
}

TEST_F(DesktopAddingFiles, AnExtensionInCapitalsIsSupported) {
    const std::string path = put("five.mp3", "song.MP3");
    compile({path});
    EXPECT_THAT(paths(), ElementsAre(path));
}

TEST_F(DesktopAddingFiles, RefusedFilesAreReportedByReason) {
    const std::string good = put("five.mp3", "good.mp3");
    const std::string wave = put("five.mp3", "x.wav");
    const std::string half = put("half.mp3", "half.mp3");
    const std::string text = folder.write("text.mp3", "not a song");
    const std::string bought = put("six.m4a", "bought.M4P");
    const std::string gone = folder.file("gone.mp3");
    compile({good, wave, half, text, bought, gone});
    EXPECT_THAT(paths(), ElementsAre(good));
    ASSERT_EQ(delegate.reports().size(), 1U);
    const EndReport report = delegate.reports().front();
    EXPECT_THAT(report.at(protectedFilesReportKey), ElementsAre(bought, gone));
    EXPECT_THAT(report.at(incompatibleFilesReportKey), ElementsAre(wave, half, text));
}

TEST_F(DesktopAddingFiles, NothingIsHeardWhenNothingIsAccepted) {
    EXPECT_FALSE(burner->addFiles({folder.write("x.wav"), folder.file("gone.mp3")}));
    EXPECT_FALSE(burner->addFiles({}));
    expectNothingIsHeard();
}

TEST_F(DesktopAddingFiles, CancellingStopsBeforeTheNextFile) {
    std::vector<std::string> songs;
    for (const char* name : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"})
        songs.push_back(put("five.mp3", std::string(name) + ".mp3"));
    delegate.whenCalled = [&](const std::string& call) {
        if (call == changed("2.mp3", 3, 10))
            burner->cancelToAddFiles();
    };
    compile(songs);
    EXPECT_THAT(paths(), ElementsAre(songs[0], songs[1], songs[2]));
    const std::vector<std::string> calls = delegate.calls();
    EXPECT_EQ(calls[calls.size() - 3], added(songs[2]));
    EXPECT_EQ(calls[calls.size() - 2], "addFilesProgressDidCanceled");
    compile({songs[5]});
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 0U);
}

TEST_F(DesktopAddingFiles, CancellingEndsInsideAFileThatTakesLong) {
    std::string content = contentOf(put("five.mp3", "five.mp3")) + "damage: it is decoded";
    while (content.size() < 50'000'000)
        content += content;
    ASSERT_TRUE(burner->addFiles({folder.write("long.mp3", content)}));
    ASSERT_TRUE(runUntilCalled(changed("long.mp3", 1, 1)));
    burner->cancelToAddFiles();
    ASSERT_TRUE(runUntilCalled("addFilesProgressDidEnd"));
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", changed("long.mp3", 1, 1),
                            "addFilesProgressDidCanceled", "addFilesProgressDidEnd"));
    EXPECT_EQ(count(), 0U);
}

TEST_F(DesktopAddingFiles, ATrackHasTheRecordOfItsFileAndTwoSecondsOfPreGap) {
    const std::string path = put("six.m4a", "Grüße 東京.m4a");
    compile({path});
    const auto track = std::dynamic_pointer_cast<const DRTrack>(burner->child(0, nullptr));
    ASSERT_TRUE(track);
    EXPECT_EQ(track->preGap().totalFrames(), 150U);
    EXPECT_EQ(track->length().totalFrames(), 450U);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path));
    const Dictionary record = delegate.added().at(0);
    EXPECT_EQ(record.size(), 7U);
    EXPECT_EQ(valueFor(record, kQuarnItemDisplayNameKey), Value("Grüße 東京.m4a"));
    EXPECT_EQ(valueFor(record, kQuarnItemFilePathKey), Value(path));
    EXPECT_EQ(valueFor(record, kQuarnItemRealDurationKey), Value(6));
    EXPECT_EQ(valueFor(record, kQuarnItemDurationKey), Value("00:00:06"));
    EXPECT_EQ(valueFor(record, kQuarnItemRealFileSizeKey), Value(size));
    EXPECT_EQ(valueFor(record, kQuarnItemFileSizeKey), Value(MultiMedia::stringWithFilesize(size)));
    const Icon* icon = valueFor(record, kQuarnItemIconKey).asIcon();
    ASSERT_NE(icon, nullptr);
    EXPECT_THAT(icon->names, ::testing::Contains("audio-x-generic"));
    for (const auto& [key, value] : record)
        EXPECT_EQ(valueFor(*burner->propertyOfBurnItem(track), key), value) << key;
}

TEST_F(DesktopAddingFiles, PlayTimesAreTruncatedToWholeSeconds) {
    const std::string songs = TEST_SONGS;
    EXPECT_EQ(burner->getMovieDuration(songs + "59.99.mp3"), 59);
    EXPECT_EQ(burner->getMovieDuration(songs + "60.00.mp3"), 60);
    EXPECT_EQ(burner->getMovieDuration(songs + "59.99.m4a"), 59);
    EXPECT_EQ(burner->getMovieDuration(songs + "60.00.m4a"), 60);
    EXPECT_EQ(burner->getMovieDuration(songs + "half.mp3"), 0);
}

TEST_F(DesktopAddingFiles, WhatIsNoMediaFileHasNoPlayTime) {
    EXPECT_EQ(burner->getMovieDuration(folder.file("gone.mp3")), 0);
    EXPECT_EQ(burner->getMovieDuration(folder.write("text.mp3", "not a song")), 0);
    EXPECT_EQ(burner->getMovieDuration(folder.write("empty.mp3")), 0);
    EXPECT_EQ(burner->getMovieDuration(folder.path().string()), 0);
}

TEST_F(DesktopAddingFiles, OverlappingRunsLoseNothingWhileTheHostReadsTheList) {
    constexpr std::uint64_t each = 12;
    std::vector<std::string> first;
    std::vector<std::string> second;
    for (std::uint64_t i = 0; i < each; ++i) {
        first.push_back(put("five.mp3", "a" + std::to_string(i) + ".mp3"));
        second.push_back(put("six.m4a", "b" + std::to_string(i) + ".m4a"));
    }
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
        while (!isOver) {
            const std::uint64_t items = count();
            EXPECT_GE(paths().size(), items);
            EXPECT_LE(items * (5 + 2), burner->usedCapacity());
        }
    });
    EXPECT_TRUE(burner->addFiles(first));
    EXPECT_TRUE(burner->addFiles(second));
    EXPECT_TRUE(runUntilCalled("addFilesProgressDidEnd", 2));
    isOver = true;
    reader.join();
    EXPECT_EQ(count(), 2 * each);
    EXPECT_EQ(delegate.added().size(), 2 * each);
    EXPECT_EQ(burner->usedCapacity(), each * (5 + 2) + each * (6 + 2));
}

TEST_F(DesktopAddingFiles, ClearingAnEmptyListIsStillReported) {
    burner->clearAll();
    EXPECT_THAT(delegate.calls(), ElementsAre("allFilesDidCleared"));
}

TEST_F(DesktopAddingFiles, ABurnerLetGoOfDuringItsRunLivesToTheEndOfIt) {
    const std::string path = put("five.mp3", "a.mp3");
    ASSERT_TRUE(burner->addFiles({path}));
    burner.reset();
    ASSERT_TRUE(runUntilCalled("addFilesProgressDidEnd"));
    EXPECT_EQ(delegate.count(added(path)), 1U);
}

TEST_F(DesktopAddingFiles, ARunThatWaitsForTheMainThreadEndsWithThePlatform) {
    const std::string a = put("five.mp3", "a.mp3");
    const std::string b = put("five.mp3", "b.mp3");
    ASSERT_TRUE(burner->addFiles({a, b}));
    while (delegate.count(changed("a.mp3", 1, 2)) == 0)
        std::this_thread::yield(); // the loop does not run
    uninstallDesktopPlatform();
    ASSERT_EQ(delegate.reports().size(), 1U);
    EXPECT_THAT(delegate.reports().front().at(incompatibleFilesReportKey), ElementsAre(a, b));
    EXPECT_EQ(count(), 0U);
}

} // namespace
} // namespace quarner::testing
