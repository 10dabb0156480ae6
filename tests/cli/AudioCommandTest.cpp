// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;

/// What only audio discs have. For the rest see BurnCommandTest.cpp.
using AudioCommandTest = BurnCommandFixture;

TEST_F(AudioCommandTest, JsonObjectsHaveTheArgumentsOfTheirCallbacks) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 0);
    const auto all = delegateObjects();
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

TEST_F(AudioCommandTest, ContentThatDoesNotFitIsNotBurnt) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4000.0});
    host.platform.putSong("/m/longer.mp3", {.seconds = 900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3", "/m/longer.mp3"}), 4);
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

} // namespace
} // namespace quarner::cli
