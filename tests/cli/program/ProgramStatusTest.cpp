// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/program/HostFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// For what is alike for every kind of disc see ProgramEveryKindTest.cpp.
class ProgramStatus : public HostFixture {
protected:
    static HostSettings withOutputTo(const std::string& file) {
        HostSettings settings;
        settings.wrapper = {"sh", "-c", "exec \"$@\" >" + file, "sh"};
        return settings;
    }
    /// To a pipe of which no reader is left before the program begins.
    static HostSettings withOutputToNobody() {
        HostSettings settings;
        settings.wrapper = {"bash", "-c", "exec > >(:); wait $!; exec \"$@\"", "bash"};
        return settings;
    }
    /// Leaves empty words out.
    static std::vector<std::string> words(std::vector<std::string> all) {
        std::erase(all, "");
        return all;
    }
};

TEST_F(ProgramStatus, Is0WhenTheImageIsWrittenAndVerified) {
    song("a.mp3");
    song("b.m4a");
    makeFolder("images");
    const HostEnd end = run({"audio", "--image", "images/mix.cue", "a.mp3", "b.m4a"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.err, "");
    EXPECT_THAT(names("images"), ElementsAre("mix.bin", "mix.cue"));
    // Two tracks of 750 sectors, and the silence before the second.
    EXPECT_EQ(std::filesystem::file_size(folder.path() / "images/mix.bin"), 1650U * 2352U);
}

TEST_F(ProgramStatus, Is2ForWrongUsageAndNothingIsTouched) {
    song("a.mp3");
    EXPECT_EQ(run({"audio", "--imag", "mix.cue", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--image", "mix.iso", "a.mp3"}).status, 2);
    const HostEnd missing = run({"audio", "--image", "none/mix.cue", "a.mp3"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.err, HasSubstr("none does not exist"));
    EXPECT_EQ(run({"data", "--title", "T", "--image", "/dev", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--drive", "none", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"audio", "--image", "mix.cue"}).status, 2);
    EXPECT_EQ(run({"burn"}).status, 2);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_THAT(names("."), ElementsAre("a.mp3"));
}

TEST_F(ProgramStatus, Is2ForAFolderInThePlaceOfTheBinBeforeAnythingIsAdded) {
    song("a.mp3");
    makeFolder("mix.bin");
    const HostEnd end = run({"audio", "--image", "mix.cue", "a.mp3"});
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(run({"disc", "--image", "mix.cue"}).status, 0) << "nothing is to be burnt";
}

TEST_F(ProgramStatus, Is0ForADiscThatAnotherProgramMadeWhichIsNotBlank) {
    folder.write("other.cue", "FILE \"other.bin\" BINARY\n  TRACK 01 MODE1/2048\n");
    folder.write("other.bin", std::string(dataBlockSize * 300, 'x'));
    const HostEnd end = run({"disc", "--json", "--image", "other.cue"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.out, HasSubstr(R"("blank":false)"));
}

TEST_F(ProgramStatus, Is3WhereFilesAreRefusedOfWhichEachIsNamed) {
    song("a.mp3");
    folder.write("damaged.mp3", "no sound");
    folder.write("protected.m4p", "x");
    folder.write("other.wav", "x");
    AudioRecipe instant = mp3Recipe();
    instant.samples = 22050;
    std::filesystem::copy_file(audioFixture(instant), folder.file("short.mp3"));
    const HostEnd end = run({"audio", "--json", "--image", "mix.cue", "none.mp3", "damaged.mp3",
                             "a.mp3", "protected.m4p", "other.wav", "short.mp3", "."});
    EXPECT_EQ(end.status, 3);
    EXPECT_EQ(lines(end.err).size(), 7U) << end.err; // one for each file, and the sum
    for (const std::string name :
         {"none.mp3", "damaged.mp3", "protected.m4p", "other.wav", "short.mp3", "."})
        EXPECT_THAT(lines(end.err), Contains(StartsWith("quarner: \"" + name + "\" ")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("mix.cue")));
}

TEST_F(ProgramStatus, Is4WhenTheContentDoesNotFitTheCapacity) {
    song("minute.mp3", 60);
    std::vector<std::string> arguments = {"audio", "--dry-run", "--image", "mix.cue"};
    arguments.insert(arguments.end(), 75, "minute.mp3"); // 75 times 62 seconds
    EXPECT_EQ(run(arguments).status, 0);
    arguments.insert(arguments.begin() + 1, {"--capacity", "74"});
    const HostEnd end = run(arguments);
    EXPECT_EQ(end.status, 4);
    EXPECT_THAT(names("."), ElementsAre("minute.mp3"));
}

TEST_F(ProgramStatus, Is1WhenTheOutputCannotBeWritten) {
    song("a.mp3");
    const HostSettings full = withOutputTo("/dev/full");
    for (const std::string command : {"--help", "--version", "drives"})
        EXPECT_EQ(run({command}, full).status, command == "drives" ? 0 : 1)
            << command; // without a drive there is nothing to print
    machine.plug({});
    for (const auto& command : {words({"drives"}), words({"drives", "--json"}), words({"disc"}),
                                words({"disc", "--json"}), words({"watch"})})
        EXPECT_EQ(run(command, full).status, 1) << command.front();
    const HostEnd end = run({"disc", "--image", "mix.cue"}, full);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr(std::generic_category().message(ENOSPC)));
}

TEST_F(ProgramStatus, Is1WhenABurnIsDoneWhoseOutputCannotBeWritten) {
    song("a.mp3");
    const HostSettings full = withOutputTo("/dev/full");
    for (const std::string view : {"", "--json"}) {
        EXPECT_EQ(run(words({"audio", view, "--image", "mix.cue", "a.mp3"}), full).status, 1);
        EXPECT_TRUE(std::filesystem::remove(folder.file("mix.cue"))) << view;
        EXPECT_EQ(run(words({"audio", view, "--image", "mix.cue", "none.mp3"}), full).status, 3);
    }
}

TEST_F(ProgramStatus, Is0WhenTheReaderOfTheOutputWentAway) {
    song("a.mp3");
    machine.plug({});
    const HostSettings unread = withOutputToNobody();
    for (const std::vector<std::string>& command :
         {words({"--help"}), words({"drives"}), words({"drives", "--json"}), words({"watch"}),
          words({"audio", "--image", "mix.cue", "a.mp3"}),
          words({"audio", "--image", "mix.cue", "--json", "a.mp3"})}) {
        const HostEnd end = run(command, unread);
        EXPECT_EQ(end.status, 0) << command.front();
        EXPECT_THAT(end.err, Not(HasSubstr(std::generic_category().message(EPIPE))));
    }
}

TEST_F(ProgramStatus, Is0WhenADataImageIsWrittenAndOtherProgramsReadIt) {
    song("a.mp3");
    song("b Größe.m4a");
    const HostEnd end =
        run({"data", "--image", "mix.iso", "--title", "Two songs", "b Größe.m4a", "a.mp3"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.err, "");
    const std::string image = folder.file("mix.iso");
    const std::string listed =
        runProgram({"isoinfo", "-J", "-f", "-j", "iso8859-1", "-i", image}).output;
    EXPECT_THAT(lines(listed), ::testing::UnorderedElementsAre("/a.mp3", "/b Gr\xF6\xDF"
                                                                         "e.m4a"));
    EXPECT_EQ(runProgram({"isoinfo", "-f", "-i", image}).output, "");
    EXPECT_THAT(runProgram({"isoinfo", "-d", "-i", image}).output,
                HasSubstr("Volume id: TWO_SONGS\n"));
    makeFolder("read");
    EXPECT_EQ(runProgram({"bsdtar", "-x", "-f", image, "-C", folder.file("read")}).status, 0);
    EXPECT_THAT(names("read"), ElementsAre("a.mp3", "b Größe.m4a"));
    for (const std::string& name : names("read"))
        EXPECT_TRUE(contentOf(folder.file("read/" + name)) == contentOf(folder.file(name))) << name;
}

TEST_F(ProgramStatus, Is2ForADataDiscWithoutATitleOrWithAnAudioImage) {
    song("a.mp3");
    EXPECT_EQ(run({"data", "--image", "mix.iso", "a.mp3"}).status, 2);
    EXPECT_EQ(run({"data", "--image", "mix.cue", "--title", "T", "a.mp3"}).status, 2);
    EXPECT_THAT(names("."), ElementsAre("a.mp3"));
    EXPECT_EQ(run({"data", "--image", "mix.iso", "--title", "", "a.mp3"}).status, 0);
}

TEST_F(ProgramStatus, Is4WhenTheFilesDoNotFitADataDisc) {
    paddedSong("a.m4a", 690'000'000);
    const std::vector<std::string> burn = {"data", "--title", "T", "--image", "mix.iso", "a.m4a"};
    std::vector<std::string> shorter = burn;
    shorter.insert(shorter.end(), {"--capacity", "74"});
    const HostEnd end = run(shorter);
    EXPECT_EQ(end.status, 4);
    shorter.push_back("--dry-run");
    EXPECT_EQ(run(shorter).status, 4);
    // What fits by itself, but not with the file system.
    paddedSong("brim.m4a", 333'000U * dataBlockSize - 10);
    shorter[5] = "brim.m4a";
    shorter.pop_back();
    EXPECT_EQ(run(shorter).status, 4);
    EXPECT_THAT(names("."), ElementsAre("a.m4a", "brim.m4a"));
}

/// In memory: there the image is written through the page cache, where anything can be written.
TEST_F(ProgramStatus, ClosedStandardStreamsDoNotTakeTheImagesPlace) {
    song("a.mp3");
    std::string memory = "/dev/shm/quarner-test-XXXXXX";
    if (mkdtemp(memory.data()) == nullptr)
        GTEST_SKIP() << "there is no /dev/shm to write to";
    HostSettings closed;
    closed.preloads.clear(); // these would take the places of the streams
    closed.wrapper = {"sh", "-c", "exec \"$@\" <&- >&- 2>&-", "sh"};
    EXPECT_EQ(run({"audio", "--verbose", "--image", memory + "/mix.cue", "a.mp3"}, closed).status,
              0);
    ASSERT_EQ(run({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    EXPECT_TRUE(contentOf(memory + "/mix.bin") == contentOf(folder.file("mix.bin")));
    std::filesystem::remove_all(memory);
}

} // namespace
} // namespace quarner::testing
