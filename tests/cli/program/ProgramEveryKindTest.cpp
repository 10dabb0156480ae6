// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/program/EveryKind.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// How the program ends, where that is alike for every kind of disc.
using ProgramEveryKind = EveryKind;

TEST_P(ProgramEveryKind, KeepGoingBurnsTheRestAndIs3OnlyWithNothingLeft) {
    song("a.mp3");
    EXPECT_EQ(burn({"--keep-going", "none.mp3"}).status, 3);
    EXPECT_FALSE(
        std::filesystem::exists(folder.file((std::string("mix") + cli::extensionFor(GetParam())))));
    EXPECT_EQ(burn({"--keep-going", "none.mp3", "a.mp3"}).status, 0);
    EXPECT_TRUE(
        std::filesystem::exists(folder.file((std::string("mix") + cli::extensionFor(GetParam())))));
}

TEST_P(ProgramEveryKind, ADryRunWritesNothing) {
    song("a.mp3");
    EXPECT_EQ(burn({"--dry-run", "a.mp3"}).status, 0);
    EXPECT_THAT(names("."), ElementsAre("a.mp3"));
}

TEST_P(ProgramEveryKind, AnImageThatExistsIsReplacedByAWholeOne) {
    song("a.mp3");
    largeSong("b.m4a", 3'000'000);
    ASSERT_EQ(burn({"a.mp3"}).status, 0);
    ASSERT_EQ(burn({"b.m4a"}).status, 0);
    const auto size = std::filesystem::file_size(folder.file(imageFiles().front()));
    EXPECT_EQ(size % (isData() ? dataBlockSize : audioSectorSize), 0U);
    EXPECT_GT(size, 3'000'000U);
    EXPECT_THAT(names("."), ElementsAreArray(withImage({"a.mp3", "b.m4a"})));
}

TEST_P(ProgramEveryKind, Is1WhenTheDiskIsFullAndTheOldImageStays) {
    song("a.mp3");
    largeSong("b.m4a", 3'000'000);
    ASSERT_EQ(burn({"a.mp3"}).status, 0);
    const std::string before = contentOf(folder.file(imageFiles().front()));
    HostSettings small;
    small.wrapper = {"prlimit", "--fsize=2000000"};
    const HostEnd end = burn({"b.m4a"}, small);
    EXPECT_EQ(end.status, 1) << end.err;
    EXPECT_THAT(end.err, HasSubstr(imageFiles().front()));
    EXPECT_TRUE(contentOf(folder.file(imageFiles().front())) == before);
    EXPECT_THAT(names("."), ElementsAreArray(withImage({"a.mp3", "b.m4a"})));
}

TEST_P(ProgramEveryKind, AnImageWithoutPermissionIsNamedBeforeAnythingIsAddedAndStays) {
    song("a.mp3");
    const std::string open = makeFolder("open");
    const std::string image = "open/" + imageFiles().back();
    chmod(folder.path().c_str(), 0755);
    chmod(open.c_str(), 0777);
    writeContent(folder.file(image), "old");
    chmod(folder.file(image).c_str(), 0444);
    HostSettings settings;
    if (geteuid() == 0)
        settings.wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    if (run({"--version"}, settings).status != 0)
        GTEST_SKIP() << "the program cannot be run by another user from here";
    const HostEnd end = run(commandLine({"a.mp3"}, "open/"), settings);
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.out, "");
    EXPECT_THAT(end.err, HasSubstr(image));
    EXPECT_EQ(contentOf(folder.file(image)), "old");
    EXPECT_EQ(names("open").size(), 1U);
}

TEST_P(ProgramEveryKind, AFolderWithoutPermissionIsNamedBeforeAnythingIsAdded) {
    song("a.mp3");
    const std::string closed = makeFolder("closed");
    chmod(folder.path().c_str(), 0755);
    HostSettings settings;
    if (geteuid() == 0)
        settings.wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    else
        chmod(closed.c_str(), 0555);
    if (run({"--version"}, settings).status != 0)
        GTEST_SKIP() << "the program cannot be run by another user from here";
    const HostEnd end = run(commandLine({"a.mp3"}, "closed/"), settings);
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.out, "");
    EXPECT_THAT(end.err, HasSubstr("/closed: " + std::generic_category().message(EACCES)));
    EXPECT_THAT(names("closed"), IsEmpty());
}

TEST_P(ProgramEveryKind, AFolderThatIsMissingIsNamedBeforeAnythingIsAdded) {
    song("a.mp3");
    const HostEnd end = run(commandLine({"a.mp3"}, "none/"));
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.out, "");
    EXPECT_THAT(end.err, HasSubstr("The folder for the image does not exist.\n" +
                                   folder.file("none") + " does not exist\n"));
}

TEST_P(ProgramEveryKind, AMachineWithoutDrivesHasNothingToBurnOnAndNothingToShow) {
    song("a.mp3");
    EXPECT_EQ(run({cli::commandFor(GetParam()), "--title", "T", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"drives"}).status, 0);
    EXPECT_EQ(run({"disc"}).status, 2);
    EXPECT_EQ(run({"eject"}).status, 2);
}

TEST_P(ProgramEveryKind, ADiscInAnImageCanBeLookedAtAndPutOut) {
    song("a.mp3");
    const std::vector<std::string> ask = {"disc", "--json", "--image",
                                          (std::string("mix") + cli::extensionFor(GetParam()))};
    EXPECT_THAT(run(ask).out, HasSubstr(R"("blank":true)"));
    ASSERT_EQ(burn({"a.mp3"}).status, 0);
    EXPECT_THAT(run(ask).out, HasSubstr(isData() ? R"("usedTime":1,)" : R"("usedTime":10,)"));
    EXPECT_EQ(
        run({"eject", "--image", (std::string("mix") + cli::extensionFor(GetParam()))}).status, 0);
    EXPECT_THAT(names("."), ElementsAreArray(withImage({"a.mp3"})));
}

TEST_P(ProgramEveryKind, AReaderThatGoesAwayDoesNotEndTheBurn) {
    song("a.mp3");
    HostProgram program(commandLine({"--json", "a.mp3"}), here());
    ASSERT_TRUE(program.waitForOutput("addFilesProgressDidStarted"));
    program.stopReading();
    EXPECT_EQ(program.wait().status, 0);
    EXPECT_TRUE(
        std::filesystem::exists(folder.file((std::string("mix") + cli::extensionFor(GetParam())))));
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, ProgramEveryKind,
                         ::testing::Values(cli::DiscKind::Audio, cli::DiscKind::Data), kindName);

} // namespace
} // namespace quarner::testing
