// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/cli/program/HostFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class ProgramStatus : public HostFixture {};

TEST_F(ProgramStatus, Is0WhenTheImageIsWrittenAndVerified) {
    song("a.mp3");
    song("b.m4a");
    makeFolder("images");
    const HostEnd end = run({"audio", "--image", "images/mix.cue", "a.mp3", "b.m4a"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.err, "");
    EXPECT_EQ(lines(end.out).back(), "Burnt and verified: 2 tracks, 00:00:24, on images/mix.cue");
    EXPECT_THAT(names("images"), ElementsAre("mix.bin", "mix.cue"));
    // Two tracks of 750 sectors, and the silence before the second.
    EXPECT_EQ(std::filesystem::file_size(folder.path() / "images/mix.bin"), 1650U * 2352U);
}

TEST_F(ProgramStatus, Is2ForWrongUsageAndNothingIsTouched) {
    song("a.mp3");
    EXPECT_EQ(run({"audio", "--imag", "mix.cue", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--image", "mix.iso", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--image", "none/mix.cue", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--drive", "none", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--image", "mix.cue"}).status, 2);
    EXPECT_EQ(run({"burn"}).status, 2);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_THAT(names("."), ElementsAre("a.mp3"));
}

TEST_F(ProgramStatus, Is3WithTheReasonForEachRefusedFile) {
    song("a.mp3");
    folder.write("damaged.mp3", "no sound");
    folder.write("protected.m4p", "x");
    folder.write("other.wav", "x");
    AudioRecipe instant = mp3Recipe();
    instant.samples = 22050;
    std::filesystem::copy_file(audioFixture(instant), folder.file("short.mp3"));
    const HostEnd end = run({"audio", "--image", "mix.cue", "none.mp3", "damaged.mp3", "a.mp3",
                             "protected.m4p", "other.wav", "short.mp3", "."});
    EXPECT_EQ(end.status, 3);
    EXPECT_THAT(lines(end.err),
                ::testing::UnorderedElementsAre(
                    "quarner: none.mp3: no such file",
                    "quarner: damaged.mp3: unreadable: no sound could be found in it",
                    "quarner: protected.m4p: copy-protected",
                    "quarner: other.wav: unsupported type (mp3 and m4a can be added)",
                    "quarner: short.mp3: shorter than a second",
                    "quarner: .: unsupported type (a folder)",
                    "quarner: 6 files of 7 refused, so nothing was burnt; --keep-going burns the "
                    "rest"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("mix.cue")));
}

TEST_F(ProgramStatus, KeepGoingBurnsTheRestAndIs3OnlyWithNothingLeft) {
    song("a.mp3");
    EXPECT_EQ(run({"audio", "--keep-going", "--image", "mix.cue", "none.mp3"}).status, 3);
    EXPECT_FALSE(std::filesystem::exists(folder.file("mix.cue")));
    const HostEnd end = run({"audio", "--keep-going", "--image", "mix.cue", "none.mp3", "a.mp3"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.err, HasSubstr("none.mp3: no such file"));
    EXPECT_TRUE(std::filesystem::exists(folder.file("mix.cue")));
}

TEST_F(ProgramStatus, Is4WhenTheContentDoesNotFitTheCapacity) {
    song("minute.mp3", 60);
    std::vector<std::string> arguments = {"audio", "--dry-run", "--image", "mix.cue"};
    arguments.insert(arguments.end(), 75, "minute.mp3"); // 75 times 62 seconds
    EXPECT_EQ(run(arguments).status, 0);
    arguments.insert(arguments.begin() + 1, {"--capacity", "74"});
    const HostEnd end = run(arguments);
    EXPECT_EQ(end.status, 4);
    EXPECT_THAT(end.err, HasSubstr("the tracks take 01:17:30 with their pauses, and the disc has "
                                   "room for 01:14:00: 00:03:30 too long"));
    EXPECT_THAT(names("."), ElementsAre("minute.mp3"));
}

TEST_F(ProgramStatus, ADryRunWritesNothing) {
    song("a.mp3");
    const HostEnd end = run({"audio", "--dry-run", "--image", "mix.cue", "a.mp3"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.out, HasSubstr("00:00:12 of 01:19:57"));
    EXPECT_THAT(names("."), ElementsAre("a.mp3"));
}

TEST_F(ProgramStatus, AnImageThatExistsIsReplacedByAWholeOne) {
    song("a.mp3");
    song("b.mp3", 20);
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "b.mp3"}).status, 0);
    EXPECT_EQ(std::filesystem::file_size(folder.file("mix.bin")), 1500U * 2352U);
    EXPECT_THAT(names("."), ElementsAre("a.mp3", "b.mp3", "mix.bin", "mix.cue"));
}

TEST_F(ProgramStatus, Is1WhenTheDiskIsFullAndTheOldImageStays) {
    song("a.mp3");
    song("b.mp3", 20);
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    const std::string before = contentOf(folder.file("mix.bin"));
    HostSettings small;
    small.wrapper = {"prlimit", "--fsize=2000000"};
    const HostEnd end = run({"audio", "--image", "mix.cue", "b.mp3"}, small);
    EXPECT_EQ(end.status, 1) << end.err;
    EXPECT_THAT(end.err, HasSubstr("quarner: the burn failed: "));
    EXPECT_THAT(end.err, HasSubstr("mix.bin"));
    EXPECT_TRUE(contentOf(folder.file("mix.bin")) == before);
    EXPECT_THAT(names("."), ElementsAre("a.mp3", "b.mp3", "mix.bin", "mix.cue"));
}

TEST_F(ProgramStatus, AFolderWithoutPermissionIsNamedWithWhatToDo) {
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
    const HostEnd end = run({"audio", "--image", "closed/mix.cue", "a.mp3"}, settings);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("quarner: the burn failed: the image may not be written there"));
    EXPECT_THAT(end.err, HasSubstr("closed/"));
    EXPECT_THAT(end.err, HasSubstr("Choose a folder that you may write to with --image"));
    EXPECT_THAT(names("closed"), IsEmpty());
}

TEST_F(ProgramStatus, AMachineWithoutDrivesIsToldWhatToDo) {
    song("a.mp3");
    const HostEnd burn = run({"audio", "a.mp3"});
    EXPECT_EQ(burn.status, 2);
    EXPECT_THAT(burn.err, HasSubstr("--image FILE.cue"));
    EXPECT_EQ(run({"drives"}).status, 0);
    EXPECT_EQ(run({"disc"}).status, 2);
    EXPECT_EQ(run({"eject"}).status, 2);
}

TEST_F(ProgramStatus, ADiscInAnImageCanBeLookedAtAndPutOut) {
    song("a.mp3");
    EXPECT_THAT(run({"disc", "--image", "mix.cue"}).out, HasSubstr("CD-R, blank"));
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    EXPECT_THAT(run({"disc", "--image", "mix.cue"}).out, HasSubstr("Used:    00:00:10"));
    EXPECT_EQ(run({"eject", "--image", "mix.cue"}).status, 0);
    EXPECT_THAT(names("."), ElementsAre("a.mp3", "mix.bin", "mix.cue"));
}

TEST_F(ProgramStatus, AReaderThatGoesAwayDoesNotEndTheBurn) {
    song("a.mp3");
    HostProgram program({"audio", "--image", "mix.cue", "a.mp3"}, here());
    ASSERT_TRUE(program.waitForOutput("Adding"));
    program.stopReading();
    EXPECT_EQ(program.wait().status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder.file("mix.cue")));
}

/// In memory: there the image is written through the page cache, where anything can be written.
TEST_F(ProgramStatus, ClosedStandardStreamsDoNotTakeTheImagesPlace) {
    song("a.mp3");
    std::string memory = "/dev/shm/quarner-test-XXXXXX";
    if (mkdtemp(memory.data()) == nullptr)
        GTEST_SKIP() << "there is no /dev/shm to write to";
    HostSettings closed;
    closed.wrapper = {"sh", "-c", "exec \"$@\" <&- >&- 2>&-", "sh"};
    EXPECT_EQ(run({"audio", "--verbose", "--image", memory + "/mix.cue", "a.mp3"}, closed).status,
              0);
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    EXPECT_TRUE(contentOf(memory + "/mix.bin") == contentOf(folder.file("mix.bin")));
    std::filesystem::remove_all(memory);
}

} // namespace
} // namespace quarner::testing
