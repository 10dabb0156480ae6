// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

/// What only audio discs have. For the rest see BurnCommandTest.cpp.
using AudioCommandTest = BurnCommandFixture;

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

TEST_F(AudioCommandTest, JsonObjectsHaveTheArgumentsOfTheirCallbacks) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 0);
    const auto all = objects();
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
                          {"itemRealDuration", 200},
                          {"uri", "file:///m/a.mp3"}}));
    EXPECT_EQ(all[3], (json{{"event", "addFilesProgressDidEnd"},
                            {"protected-files", json::array()},
                            {"protected-file-uris", json::array()},
                            {"incompatible-files", json::array()},
                            {"incompatible-file-uris", json::array()}}));
    EXPECT_EQ(
        all[4],
        (json{{"event", "compilation"}, {"items", 1}, {"usedCapacity", 202}, {"overflow", false}}));
    EXPECT_EQ(all[7], (json{{"event", "burnProgressIsOpeningTrack"}, {"track", 1}, {"of", 1}}));
    EXPECT_TRUE(all[8].at("fraction").is_number_float());
    EXPECT_TRUE(all[8].at("lefttime").is_number_unsigned());
    EXPECT_EQ(all.back(), (json{{"event", "exit"}, {"status", 0}}));
}

TEST_F(AudioCommandTest, ContentThatDoesNotFitIsNotBurntAndToldByHowMuch) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4000.0});
    host.platform.putSong("/m/longer.mp3", {.seconds = 900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3", "/m/longer.mp3"}), 4);
    EXPECT_THAT(host.err(),
                HasSubstr("the tracks and their pauses take 01:21:44, and the disc has room for "
                          "01:19:57: 00:01:47 too long"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(AudioCommandTest, OneTrackThatDoesNotFitHasOnePause) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3"}), 4);
    EXPECT_THAT(host.err(), HasSubstr("the track and its pause take 01:21:42, "));
}

TEST_F(AudioCommandTest, ABurnThatFindsTheDiscTooSmallIsAMatterOfRoomToo) {
    host.platform.playBurns({.failsAt = 0.0, .code = DRError::MediaTooSmall});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 4);
    EXPECT_THAT(host.err(), HasSubstr("less than a second too long"));
}

TEST_F(AudioCommandTest, AFullDiskIsToldWithTheRoomThatTheImageTakes) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::NoSpace});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("The image takes 34 MB: make room"));
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
