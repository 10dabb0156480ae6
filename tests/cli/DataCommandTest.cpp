// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::Contains;

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

TEST_F(DataCommandTest, JsonCountsBytesAndKnowsNoProtectedFiles) {
    putFile("/m/size.mp3", 123456);
    EXPECT_EQ(host.run({"data", "--json", "--title", "T", "/m/a.mp3", "/m/size.mp3"}), 0);
    const auto all = delegateObjects();
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
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(DataCommandTest, FilesThatFillTheDiscExactlyAreNoOverflow) {
    putBlocksFree(10);
    putFile("/m/full.mp3", 20480);
    EXPECT_EQ(host.run({"data", "--dry-run", "--title", "T", "/m/full.mp3"}), 0);
}

TEST_F(DataCommandTest, ContentThatDoesNotFitIsNotBurnt) {
    putBlocksFree(1024);
    putFile("/m/large.mp3", 3 * 1024 * 1024);
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/large.mp3"}), 4);
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_F(DataCommandTest, AnImageEndsInIso) {
    EXPECT_EQ(host.run({"data", "--title", "T", "--image", "mix.cue", "/m/a.mp3"}), 2);
    EXPECT_EQ(host.run({"audio", "--image", "mix.iso", "/m/a.mp3"}), 2);
    EXPECT_TRUE(host.images.empty());
}

} // namespace
} // namespace quarner::cli
