// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/TestHost.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class DriveChoiceTest : public testing::Test {
protected:
    /// What is said to a burn that ends with "wrong usage".
    std::string usageError(const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"audio", "/m/a.mp3"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(host.run(arguments), 2);
        return host.err();
    }

    const std::string folder = std::filesystem::temp_directory_path().string();
    TestHost host;
};

TEST_F(DriveChoiceTest, WithoutAnyDriveTheWayToAnImageIsTold) {
    EXPECT_THAT(usageError({}), AllOf(HasSubstr("there is no drive"), HasSubstr("--image")));
}

TEST_F(DriveChoiceTest, SeveralWritersAreListedAndOthersAreNot) {
    host.platform.addDrive({.name = "One"});
    host.platform.addDrive({.name = "Two"});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_THAT(usageError({}),
                AllOf(HasSubstr("--drive NAME:\n  One\n  Two\n"), Not(HasSubstr("Reader"))));
}

TEST_F(DriveChoiceTest, AReaderBesideTheOnlyWriterDoesNotMatter) {
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.putSong("/m/a.mp3", {.seconds = 10.0});
    host.platform.playBurns();
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 0);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Writer");
}

TEST_F(DriveChoiceTest, ReadersAloneAreListed) {
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_THAT(usageError({}), AllOf(HasSubstr("no drive can write CDs"), HasSubstr("Reader")));
    EXPECT_THAT(usageError({"--drive", "Reader"}), HasSubstr("'Reader' cannot write CDs"));
}

TEST_F(DriveChoiceTest, AnUnknownDriveNamesTheNearestAndListsAll) {
    host.platform.addDrive({.name = "Front drive"});
    host.platform.addDrive({.name = "Back\ndrive"});
    EXPECT_THAT(usageError({"--drive", "Frnt drive"}),
                AllOf(HasSubstr("did you mean 'Front drive'?"), HasSubstr("\n  Back\uFFFDdrive")));
}

TEST_F(DriveChoiceTest, AnImagesNameEndsInCueInALetterCaseOfItsOwn) {
    EXPECT_THAT(usageError({"--image", folder + "/mix.iso"}), HasSubstr("must end in .cue"));
    EXPECT_THAT(usageError({"--image", folder + "/cue"}), HasSubstr("must end in .cue"));
    EXPECT_THAT(usageError({"--image", folder + "/.cue"}), HasSubstr("must end in .cue"));
    EXPECT_THAT(usageError({"--image", ""}), HasSubstr("must end in .cue"));
    EXPECT_TRUE(host.images.empty());
    host.run({"audio", "--image", folder + "/Mix.CUE", "/m/a.mp3"});
    EXPECT_EQ(host.images.size(), 1U);
}

TEST_F(DriveChoiceTest, AnImageNeedsAFolderThatExists) {
    EXPECT_THAT(usageError({"--image", folder + "/no such folder/mix.cue"}),
                HasSubstr("no such folder' does not exist"));
}

TEST_F(DriveChoiceTest, AFolderThatCannotBeReachedIsNotSaidToBeMissing) {
    const TemporaryFolder closed; // to others
    std::filesystem::create_directory(closed.file("inner"));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    EXPECT_THAT(usageError({"--image", closed.file("inner/mix.cue")}),
                AllOf(HasSubstr("inner' cannot be used: Permission denied"),
                      Not(HasSubstr("does not exist"))));
    EXPECT_TRUE(host.images.empty());
}

TEST_F(DriveChoiceTest, AFolderIsNoImage) {
    const auto trap = std::filesystem::path(testing::TempDir()) / "quarner-choice.cue";
    std::filesystem::create_directory(trap);
    EXPECT_THAT(usageError({"--image", trap.string()}), HasSubstr("is a folder"));
    std::filesystem::remove(trap);
}

TEST_F(DriveChoiceTest, ARelativeImageStandsInTheWorkingFolder) {
    host.run({"audio", "--image", "mix.cue", "/m/a.mp3"});
    ASSERT_EQ(host.images.size(), 1U);
    EXPECT_EQ(host.images[0].path, (std::filesystem::current_path() / "mix.cue").string());
}

TEST_F(DriveChoiceTest, ProgramsAreToldTheStatusOfAUsageProblemToo) {
    EXPECT_EQ(host.run({"audio", "--json", "/m/a.mp3"}), 2);
    EXPECT_EQ(host.out(), "{\"event\":\"exit\",\"status\":2}\n");
    EXPECT_EQ(host.run({"audio", "--json"}), 2);
    EXPECT_EQ(host.out(), "{\"event\":\"exit\",\"status\":2}\n");
}

} // namespace
} // namespace quarner::cli
