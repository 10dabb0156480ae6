// SPDX-License-Identifier: LGPL-2.1-or-later
#include <chrono>
#include <csignal>
#include <utility>

#include "tests/cli/program/EveryKind.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Clock = std::chrono::steady_clock;

/// Works that take long enough to be interrupted.
class ProgramSignals : public EveryKind {
protected:
    ProgramSignals() {
        song("minute.mp3", 60);
        makeFolder("images");
    }

    /// So many times the same song, onto an image.
    std::vector<std::string> songs(std::size_t count) const {
        std::vector<std::string> rest(count, "minute.mp3");
        rest.emplace_back("--json");
        return commandLine(rest, "images/");
    }

    /// A burn that writes for a while: a number of minutes of sound, or one file that takes as
    /// long.
    std::vector<std::string> work(unsigned minutes) const {
        if (!isData())
            return songs(minutes);
        const std::string name = std::to_string(minutes) + ".m4a";
        largeSong(name, minutes * 20'000'000);
        return commandLine({"--json", name}, "images/");
    }

    /// A small file that plays for hours. It has to be decoded to its end to be measured, since
    /// its sample rate changes.
    void writeSlowlyMeasuredFile(const std::string& name) const {
        AudioRecipe first = untaggedMP3Recipe();
        AudioRecipe minute = {.name = "slow.mp3",
                              .encoder = {"-c:a", "libmp3lame", "-b:a", "8k", "-write_xing", "0",
                                          "-id3v2_version", "0"},
                              .rate = 8000,
                              .channels = 1,
                              .samples = 60 * 8000};
        std::string content = contentOf(audioFixture(first));
        for (int minutes = 0; minutes < 240; ++minutes)
            content += contentOf(audioFixture(minute));
        writeContent(folder.file(name), content);
    }

    /// What is told in the midst of the writing of a work.
    std::string writing() const { return writingTrack(isData() ? 1 : 2); }
    static std::string writingTrack(int track) {
        return R"("burnProgressIsWriteingTrack","track":)" + std::to_string(track) + ',';
    }

    /// The end of a burn of which the marker has been seen and that has then got these signals.
    HostEnd interrupted(const std::vector<std::string>& arguments, const std::string& marker,
                        const std::vector<int>& signals) const {
        HostProgram program(arguments, here());
        EXPECT_TRUE(program.waitForOutput(marker));
        for (const int number : signals)
            program.signal(number);
        return program.wait();
    }
};

TEST_P(ProgramSignals, CtrlCWhileAddingCancelsTheRun) {
    const HostEnd end = interrupted(songs(2000), R"("index":3,"of":2000)", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, CtrlCInsideALongFileEndsWithinASecond) {
    writeSlowlyMeasuredFile("slow.mp3");
    auto shortest = Clock::duration::max();
    for (int attempt = 0; attempt < 5 && shortest > std::chrono::seconds(1); ++attempt) {
        HostProgram program(commandLine({"--json", "slow.mp3"}, "images/"), here());
        ASSERT_TRUE(program.waitForOutput(R"("index":1,"of":1)"));
        program.signal(SIGINT);
        const Clock::time_point start = Clock::now();
        EXPECT_EQ(program.wait().status, 130);
        shortest = std::min(shortest, Clock::now() - start); // the machine may have other work
        EXPECT_THAT(names("images"), IsEmpty());
    }
    EXPECT_LT(shortest, std::chrono::seconds(1));
}

TEST_P(ProgramSignals, ASecondSignalWhileAddingEndsAtOnce) {
    EXPECT_EQ(interrupted(songs(2000), R"("index":3,"of":2000)", {SIGINT, SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, CtrlCWhileBurningLeavesNothingBehind) {
    const HostEnd end = interrupted(work(30), writing(), {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, TheRequestToTerminateIsTreatedAlike) {
    EXPECT_EQ(interrupted(work(30), writing(), {SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, OnesThatTheProgramWasStartedToIgnoreDoNotEndIt) {
    const std::vector<std::string> arguments = work(5);
    HostSettings ignoring = here();
    for (const auto& [name, number] :
         {std::pair("INT", SIGINT), {"TERM", SIGTERM}, {"HUP", SIGHUP}}) {
        ignoring.wrapper = {"sh", "-c", "trap '' " + std::string(name) + "; exec \"$@\"", "sh"};
        HostProgram program(arguments, ignoring);
        EXPECT_TRUE(program.waitForOutput(writingTrack(1)));
        program.signal(number);
        EXPECT_EQ(program.wait().status, 0) << name;
        HostProgram other(arguments, ignoring);
        EXPECT_TRUE(other.waitForOutput(writingTrack(1)));
        other.signal(number == SIGTERM ? SIGINT : SIGTERM);
        EXPECT_EQ(other.wait().status, 130) << name;
    }
}

TEST_P(ProgramSignals, ASecondSignalWhileBurningEndsAtOnceAndLeavesNothingBehind) {
    EXPECT_EQ(interrupted(work(30), writing(), {SIGINT, SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, CtrlCWhileVerifyingLeavesNothingBehind) {
    const HostEnd end = interrupted(work(10), "burnProgressIsVerifying", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_P(ProgramSignals, ACancelledBurnKeepsTheImageThatWasThere) {
    ASSERT_EQ(run(songs(1)).status, 0);
    const std::string file = folder.file("images/" + imageFiles().front());
    const std::string before = contentOf(file);
    EXPECT_EQ(interrupted(work(30), writing(), {SIGINT}).status, 130);
    EXPECT_THAT(names("images"), ElementsAreArray(imageFiles()));
    EXPECT_TRUE(contentOf(file) == before);
}

TEST_P(ProgramSignals, JsonTellsTheCancellationAndTheStatus) {
    const HostEnd end = interrupted(work(30), writing(), {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(end.out, ::testing::HasSubstr("{\"event\":\"burnProgressDidCanceled\"}\n"));
    EXPECT_TRUE(end.out.ends_with("{\"event\":\"exit\",\"status\":130}\n"));
}

TEST_P(ProgramSignals, ABurnThatWasKilledLeavesNothingThatTheNextOneDoesNotClearAway) {
    const HostEnd killed = interrupted(work(30), writing(), {SIGKILL});
    EXPECT_EQ(killed.status, 137);
    for (const std::string& name : imageFiles())
        EXPECT_FALSE(std::filesystem::exists(folder.file("images/" + name)));
    EXPECT_EQ(run(songs(1)).status, 0);
    EXPECT_THAT(names("images"), ElementsAreArray(imageFiles()));
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, ProgramSignals,
                         ::testing::Values(cli::DiscKind::Audio, cli::DiscKind::Data), kindName);

using ProgramWatching = HostFixture;

TEST_F(ProgramWatching, EndsInOrderWithACtrlCThatComesBeforeItHasBegun) {
    HostSettings early;
    early.preloads.emplace_back(INTERRUPT_AT_START);
    const HostEnd end = run({"watch", "--json"}, early);
    EXPECT_EQ(end.status, 130);
    EXPECT_EQ(end.out, "{\"event\":\"watching\",\"drives\":[]}\n"
                       "{\"event\":\"exit\",\"status\":130}\n"); // not what a signal leaves
}

TEST_F(ProgramWatching, EndsWithCtrlC) {
    HostProgram program({"watch"}, here());
    ASSERT_TRUE(program.waitForOutput("There is no drive yet."));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().status, 130);
}

} // namespace
} // namespace quarner::testing
