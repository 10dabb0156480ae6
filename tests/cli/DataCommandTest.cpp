// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What only data discs have. For the rest see BurnCommandTest.cpp.
class DataCommandTest : public BurnCommandFixture {
protected:
    void putFile(const std::string& path, std::int64_t size) {
        host.platform.putSong(path, {.seconds = 200.0}, {.size = size});
    }
    void putBlocksFree(std::uint64_t blocks) {
        writer->change([&](DriveScript& script) { script.disc->blocksFree = blocks; });
    }
};

TEST_F(DataCommandTest, PlainLinesShowFilesUsageInSizesAndTenths) {
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/a.mp3", "/m/b.m4a"}), 0);
    const auto lines = host.outLines();
    EXPECT_THAT(lines, Contains("Adding 1 of 2: a.mp3"));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("  2  b.m4a"), HasSubstr("00:03:20"),
                                      HasSubstr("3.8 MB"))));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("     2 files   "), HasSubstr("  7.6 MB"),
                                      Not(HasSubstr("00:")))));
    EXPECT_THAT(lines, Contains(HasSubstr("] 7.6 MB of 702.8 MB, 695.2 MB left")));
    EXPECT_THAT(lines, Contains("Verifying"));
    EXPECT_EQ(lines.back(), "Burnt and verified: 2 files, 7.6 MB, on Writer");
}

TEST_F(DataCommandTest, TheTimeLeftIsNotShownForItIsNotKnown) {
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/a.mp3"}), 0);
    EXPECT_THAT(host.outLines(), Contains("Writing track 1 of 1: 100%"));
    EXPECT_THAT(host.out(), Not(HasSubstr("0:00 left")));
}

TEST_F(DataCommandTest, JsonCountsBytesAndKnowsNoProtectedFiles) {
    putFile("/m/size.mp3", 123456);
    EXPECT_EQ(host.run({"data", "--json", "--title", "T", "/m/a.mp3", "/m/size.mp3"}), 0);
    const auto all = objects();
    EXPECT_EQ(all[5], (json{{"event", "addFilesProgressDidEnd"},
                            {"incompatible-files", json::array()},
                            {"incompatible-file-uris", json::array()}}));
    EXPECT_EQ(all[6], (json{{"event", "compilation"},
                            {"items", 2},
                            {"usedCapacity", 4123456},
                            {"overflow", false}}));
    EXPECT_THAT(
        all,
        Contains(json{{"event", "burnProgressDidChanaged"}, {"fraction", 1.0}, {"lefttime", 0}}));
}

TEST_F(DataCommandTest, TheTitleIsTheNameOfTheDisc) {
    EXPECT_EQ(host.run({"data", "--title", "Größte Hits", "/m/a.mp3"}), 0);
    EXPECT_EQ(host.platform.lastBurn()->layout().at(0)->rootFolder->name(), "Größte Hits");
    EXPECT_EQ(host.run({"data", "--title", "", "/m/a.mp3"}), 0);
    EXPECT_EQ(host.platform.lastBurn()->layout().at(0)->rootFolder->name(), "");
}

TEST_F(DataCommandTest, WithoutATitleNothingIsDone) {
    EXPECT_EQ(host.run({"data", "/m/a.mp3"}), 2);
    EXPECT_THAT(host.err(), HasSubstr("a data disc needs a name: --title NAME"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(DataCommandTest, FilesThatFillTheDiscExactlyAreNoOverflow) {
    putBlocksFree(10);
    putFile("/m/full.mp3", 20480);
    EXPECT_EQ(host.run({"data", "--dry-run", "--title", "T", "/m/full.mp3"}), 0);
    EXPECT_THAT(host.out(), HasSubstr("20 KB of 20 KB, 0 KB left"));
}

TEST_F(DataCommandTest, ContentThatDoesNotFitIsNotBurntAndToldByHowMuch) {
    putBlocksFree(1024);
    putFile("/m/large.mp3", 3 * 1024 * 1024);
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/large.mp3"}), 4);
    EXPECT_THAT(host.err(),
                HasSubstr("the file takes 3 MB, and the disc has room for 2 MB: 1 MB too much"));
    EXPECT_THAT(host.out(), HasSubstr("3 MB of 2 MB, 1 MB too much"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(DataCommandTest, AFullDiskIsToldWithTheRoomThatTheImageTakes) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::NoSpace});
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("The image takes 3.8 MB: make room"));
}

TEST_F(DataCommandTest, AnImageEndsInIso) {
    EXPECT_EQ(host.run({"data", "--title", "T", "--image", "mix.cue", "/m/a.mp3"}), 2);
    EXPECT_THAT(host.err(), AllOf(HasSubstr("must end in .iso, as in mix.iso"),
                                  HasSubstr("ends in .cue is made by quarner audio")));
    EXPECT_EQ(host.run({"audio", "--image", "mix.iso", "/m/a.mp3"}), 2);
    EXPECT_THAT(host.err(), AllOf(HasSubstr("must end in .cue, as in mix.cue"),
                                  HasSubstr("ends in .iso is made by quarner data")));
    EXPECT_TRUE(host.images.empty());
}

TEST_F(DataCommandTest, ATerminalShowsABarWithoutATime) {
    TestHost terminal(Screen{true, true, [] { return std::size_t{80}; }});
    terminal.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    terminal.platform.putSong("/m/a.mp3", {.seconds = 200.0});
    terminal.platform.playBurns();
    EXPECT_EQ(terminal.run({"data", "--title", "T", "/m/a.mp3"}), 0);
    EXPECT_THAT(terminal.out(),
                HasSubstr("\rWriting track 1 of 1 [██████████████████████████████] 100%\x1b[K"));
    EXPECT_THAT(terminal.out(), HasSubstr("\r\x1b[KBurnt and verified: 1 file, 3.8 MB, on Writer"));
}

} // namespace
} // namespace quarner::cli
