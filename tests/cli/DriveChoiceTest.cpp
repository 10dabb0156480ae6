// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/TestHost.h"

namespace quarner::cli {
namespace {

class DriveChoiceTest : public testing::Test {
protected:
    int burn(const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"audio", "/m/a.mp3"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return host.run(arguments);
    }

    const std::string folder = std::filesystem::temp_directory_path().string();
    TestHost host;
};

TEST_F(DriveChoiceTest, ADriveThatBurnsIsChosenByItsName) {
    host.platform.addDrive({.name = "One"});
    host.platform.addDrive({.name = "Two"});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_EQ(burn({}), 2);
    EXPECT_EQ(burn({"--drive", "Three"}), 2);
    EXPECT_EQ(burn({"--drive", "Reader"}), 2);
}

TEST_F(DriveChoiceTest, AReaderBesideTheOnlyWriterDoesNotMatter) {
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.putSong("/m/a.mp3", {.seconds = 10.0});
    host.platform.playBurns();
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 0);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Writer");
}

TEST_F(DriveChoiceTest, AnImagesNameEndsInCueInALetterCaseOfItsOwn) {
    for (const std::string& image :
         std::vector<std::string>{folder + "/mix.iso", folder + "/cue", folder + "/.cue", ""})
        EXPECT_EQ(burn({"--image", image}), 2) << image;
    EXPECT_TRUE(host.images.empty());
    host.run({"audio", "--image", folder + "/Mix.CUE", "/m/a.mp3"});
    EXPECT_EQ(host.images.size(), 1U);
}

TEST_F(DriveChoiceTest, ProgramsAreToldTheStatusOfAUsageProblemToo) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 2);
    EXPECT_EQ(host.out(), "{\"event\":\"exit\",\"status\":2}\n");
    EXPECT_EQ(host.run({"audio", "--json"}), 2);
    EXPECT_EQ(host.out(), "{\"event\":\"exit\",\"status\":2}\n");
}

} // namespace
} // namespace quarner::cli
