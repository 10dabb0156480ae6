// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/TestHost.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<json> objects(const TestHost& host) {
    std::vector<json> all;
    for (const std::string& line : host.outLines())
        all.push_back(json::parse(line));
    return all;
}

std::vector<std::string> events(const TestHost& host) {
    std::vector<std::string> names;
    for (const json& object : objects(host))
        names.push_back(object.at("event"));
    return names;
}

/// A writer with a blank disc, three songs, and burns that go well.
class AudioCommandTest : public testing::Test {
protected:
    AudioCommandTest() {
        host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
        for (const char* const song : {"/m/a.mp3", "/m/b.m4a", "/m/c.mp3"})
            host.platform.putSong(song, {.seconds = 200.0});
        host.platform.playBurns();
    }

    TestHost host;
};

TEST_F(AudioCommandTest, BurnsTheFilesOnTheOnlyDrive) {
    EXPECT_EQ(host.run({"audio", "/m/a.mp3", "/m/b.m4a"}), 0);
    EXPECT_THAT(host.outLines().back(),
                HasSubstr("Burnt and verified: 2 tracks, 00:06:44, on Writer"));
    EXPECT_EQ(host.err(), "");
    EXPECT_EQ(host.platform.lastBurn()->layout().size(), 2U);
}

TEST_F(AudioCommandTest, PlainLinesShowFilesTracksUsageStepsAndTenths) {
    EXPECT_EQ(host.run({"audio", "/m/a.mp3", "/m/b.m4a"}), 0);
    const auto lines = host.outLines();
    EXPECT_THAT(lines, Contains("Adding 1 of 2: a.mp3"));
    EXPECT_THAT(lines, Contains("Adding 2 of 2: b.m4a"));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("  2  b.m4a"), HasSubstr("00:03:20"),
                                      HasSubstr("3.8 MB"))));
    EXPECT_THAT(lines, Contains(HasSubstr("00:06:44 of 01:19:57, 01:13:13 left")));
    EXPECT_THAT(lines, Contains("Writing track 1 of 2"));
    EXPECT_THAT(lines, Contains(StartsWith("Writing track 2 of 2: 100%, 0:00 left")));
    EXPECT_THAT(lines, Contains("Verifying"));
    EXPECT_EQ(host.out().find('\x1b'), std::string::npos);
    EXPECT_EQ(host.out().find('\r'), std::string::npos);
}

TEST_F(AudioCommandTest, JsonTellsEveryCallbackInOrderAndEndsWithTheStatus) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 0);
    EXPECT_THAT(
        events(host),
        ElementsAre(
            "addFilesProgressDidStarted", "addFilesProgressDidChanged", "fileDidAdded",
            "addFilesProgressDidEnd", "compilation", "burnProgressDidStarted",
            "burnProgressIsPreparing", "burnProgressIsOpeningTrack", "burnProgressDidChanaged",
            "burnProgressIsWriteingTrack", "burnProgressDidChanaged", "burnProgressIsWriteingTrack",
            "burnProgressDidChanaged", "burnProgressDidCloseTrack", "burnProgressDidCloseSession",
            "burnProgressIsFinishing", "burnProgressIsVerifying", "burnProgressDidChanaged",
            "burnProgressIsVerifying", "burnProgressDidChanaged", "burnProgressIsVerifying",
            "burnProgressDidDone", "exit"));
}

TEST_F(AudioCommandTest, JsonObjectsHaveTheArgumentsOfTheirCallbacks) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 0);
    const auto all = objects(host);
    EXPECT_EQ(
        all[1],
        (json{
            {"event", "addFilesProgressDidChanged"}, {"name", "a.mp3"}, {"index", 1}, {"of", 1}}));
    const json& item = all[2].at("item");
    EXPECT_EQ(item, (json{{"itemFileSize", "3.8 MB"},
                          {"itemRealFileSize", 4000000},
                          {"itemName", "a.mp3"},
                          {"itemPath", "/m/a.mp3"},
                          {"itemIcon", json::array()},
                          {"itemDuration", "00:03:20"},
                          {"itemRealDuration", 200}}));
    EXPECT_EQ(all[3], (json{{"event", "addFilesProgressDidEnd"},
                            {"protected-files", json::array()},
                            {"incompatible-files", json::array()}}));
    EXPECT_EQ(
        all[4],
        (json{{"event", "compilation"}, {"items", 1}, {"usedCapacity", 202}, {"overflow", false}}));
    EXPECT_EQ(all[7], (json{{"event", "burnProgressIsOpeningTrack"}, {"track", 1}, {"of", 1}}));
    EXPECT_TRUE(all[8].at("fraction").is_number_float());
    EXPECT_TRUE(all[8].at("lefttime").is_number_unsigned());
    EXPECT_EQ(all.back(), (json{{"event", "exit"}, {"status", 0}}));
}

TEST_F(AudioCommandTest, ARefusedFileKeepsTheBurnFromStarting) {
    EXPECT_EQ(host.run({"audio", "/m/a.mp3", "/m/none.mp3"}), 3);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre("quarner: /m/none.mp3: no such file",
                            "quarner: 1 file of 2 refused, so nothing was burnt; --keep-going "
                            "burns the rest"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(AudioCommandTest, KeepGoingBurnsTheRest) {
    EXPECT_EQ(host.run({"audio", "--keep-going", "/m/a.mp3", "/m/none.mp3"}), 0);
    EXPECT_THAT(host.err(), HasSubstr("/m/none.mp3: no such file"));
    ASSERT_NE(host.platform.lastBurn(), nullptr);
    EXPECT_EQ(host.platform.lastBurn()->layout().size(), 1U);
}

TEST_F(AudioCommandTest, KeepGoingWithNothingLeftIsARefusal) {
    EXPECT_EQ(host.run({"audio", "--keep-going", "--json", "/m/none.mp3", "/m/x.txt"}), 3);
    EXPECT_THAT(events(host), ElementsAre("compilation", "exit"));
    EXPECT_EQ(objects(host)[0].at("items"), 0);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre(HasSubstr("none.mp3: no such file"), HasSubstr("x.txt: no such file"),
                            "quarner: nothing is left to burn"));
}

TEST_F(AudioCommandTest, ContentThatDoesNotFitIsNotBurntAndToldByHowMuch) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4000.0});
    host.platform.putSong("/m/longer.mp3", {.seconds = 900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3", "/m/longer.mp3"}), 4);
    EXPECT_THAT(host.err(), HasSubstr("01:21:44 with their pauses, and the disc has room for "
                                      "01:19:57: 00:01:47 too long"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(AudioCommandTest, ABurnThatFindsTheDiscTooSmallIsAMatterOfRoomToo) {
    host.platform.playBurns({.failsAt = 0.0, .code = DRError::MediaTooSmall});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 4);
    EXPECT_THAT(host.err(), HasSubstr("less than a second too long"));
}

TEST_F(AudioCommandTest, AFailedBurnIsToldWithItsReasonAndWhatToDo) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::PermissionDenied});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("the burn failed: the image may not be written there"));
    EXPECT_THAT(host.err(), HasSubstr("Choose a folder that you may write to"));
}

TEST_F(AudioCommandTest, AFullDiskIsToldWithTheRoomThatTheImageTakes) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::NoSpace});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("The image takes 34 MB: make room"));
}

TEST_F(AudioCommandTest, TheServicesOwnTextOnAFailureIsShown) {
    host.platform.playBurns({.progressReports = 2000});
    host.atEachTurn = [&] {
        const auto burn = host.platform.lastBurn();
        if (burn && burn->isPlaying())
            burn->post(Dictionary{
                {DRStatusStateKey, DRStatusStateFailed},
                {DRErrorStatusKey,
                 Dictionary{{DRErrorStatusErrorKey, static_cast<std::uint32_t>(DRError::NoSpace)},
                            {DRErrorStatusErrorInfoKey, "writing /m/x.bin: disk\nfull"}}}});
    };
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("(writing /m/x.bin: disk\uFFFDfull)"));
}

TEST_F(AudioCommandTest, AnEmptyDriveIsToldAsSuch) {
    TestHost empty;
    empty.platform.addDrive({.name = "Writer"});
    empty.platform.putSong("/m/a.mp3", {.seconds = 200.0});
    EXPECT_EQ(empty.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(empty.err(), HasSubstr("there is no disc in the drive"));
}

TEST_F(AudioCommandTest, ADryRunDoesEverythingUpToTheBurn) {
    EXPECT_EQ(host.run({"audio", "--dry-run", "/m/a.mp3"}), 0);
    EXPECT_THAT(host.out(), HasSubstr("00:03:22 of 01:19:57"));
    EXPECT_THAT(host.outLines().back(), HasSubstr("nothing was written"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
    EXPECT_EQ(host.run({"audio", "--dry-run", "/m/b.m4a", "/m/none.mp3"}), 3);
    host.platform.putSong("/m/long.mp3", {.seconds = 5000.0});
    EXPECT_EQ(host.run({"audio", "--dry-run", "/m/long.mp3"}), 4);
}

TEST_F(AudioCommandTest, TheTitleAndTheImageReachTheBurn) {
    const auto folder = std::filesystem::temp_directory_path();
    const std::string image = (folder / "mix.cue").string();
    EXPECT_EQ(host.run({"audio", "--image", image, "--capacity", "74", "--title", "T", "/m/a.mp3"}),
              0);
    ASSERT_EQ(host.images.size(), 1U);
    EXPECT_EQ(host.images[0].path, image);
    EXPECT_EQ(host.images[0].minutes, 74);
    EXPECT_EQ(host.images[0].disc, ImageRequest::Disc::Blank);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Image " + image);
    EXPECT_THAT(host.outLines().back(), HasSubstr("on " + image));
}

TEST_F(AudioCommandTest, InterruptingTheAddingStopsAtTheNextFile) {
    host.platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == "/m/b.m4a")
            host.interrupt();
    });
    host.platform.backgroundQueue().hold();
    host.atEachTurn = [&] { host.platform.backgroundQueue().releaseOne(); };
    // The last file of the run waits until the interruption has been dealt with.
    host.platform.onCall(ServiceCall::TrackForAudioFile,
                         [&](const std::string&) { g_usleep(20000); });
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3", "/m/b.m4a", "/m/c.mp3"}), 130);
    EXPECT_THAT(events(host), Contains("addFilesProgressDidCanceled"));
    EXPECT_THAT(events(host), Not(Contains("burnProgressDidStarted")));
    EXPECT_EQ(objects(host).back().at("status"), 130);
    EXPECT_THAT(host.err(), HasSubstr("cancelled; nothing was written"));
}

TEST_F(AudioCommandTest, InterruptingTheBurnWaitsForItsEnd) {
    host.platform.playBurns({.progressReports = 2000});
    bool isAsked = false;
    host.atEachTurn = [&] {
        const auto burn = host.platform.lastBurn();
        if (burn && burn->isPlaying() && !std::exchange(isAsked, true))
            host.interrupt();
    };
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 130);
    EXPECT_TRUE(host.platform.lastBurn()->isAborted());
    EXPECT_EQ(events(host)[events(host).size() - 2], "burnProgressDidCanceled");
}

TEST_F(AudioCommandTest, ABurnThatIsDoneBeforeItCouldBeInterruptedIsDone) {
    host.platform.fail(ServiceCall::Abort);
    bool isAsked = false;
    host.atEachTurn = [&] {
        const auto burn = host.platform.lastBurn();
        if (burn && burn->isPlaying() && !std::exchange(isAsked, true))
            host.interrupt();
    };
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 0);
}

TEST_F(AudioCommandTest, EndingAtOnceEndsThePlatformBeforeTheDelegateGoes) {
    host.platform.playBurns({.progressReports = 2000});
    bool isEnded = false;
    host.atEachTurn = [&] {
        const auto burn = host.platform.lastBurn();
        if (burn && burn->isPlaying() && !std::exchange(isEnded, true))
            host.loop.post([] { throw EndedAtOnce(); });
    };
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 130);
    EXPECT_EQ(host.platformEndings, 1);
    EXPECT_EQ(objects(host).back(), (json{{"event", "exit"}, {"status", 130}}));
}

TEST_F(AudioCommandTest, ATerminalShowsOneProgressBar) {
    TestHost terminal(Screen{true, true, [] { return std::size_t{80}; }});
    terminal.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    terminal.platform.putSong("/m/a.mp3", {.seconds = 200.0});
    terminal.platform.playBurns();
    EXPECT_EQ(terminal.run({"audio", "/m/a.mp3"}), 0);
    const std::string out = terminal.out();
    EXPECT_THAT(out, HasSubstr("\rAdding 1 of 1: a.mp3\x1b[K"));
    EXPECT_THAT(out, HasSubstr("\rPreparing\x1b[K"));
    EXPECT_THAT(out, HasSubstr("\rWriting track 1 of 1 [██████████████████████████████] 100%"));
    EXPECT_THAT(out, HasSubstr("\rVerifying ["));
    EXPECT_THAT(out, HasSubstr("\r\x1b[KBurnt and verified: 1 track, 00:03:22, on Writer\n"));
}

} // namespace
} // namespace quarner::cli
