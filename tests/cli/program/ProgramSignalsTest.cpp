// SPDX-License-Identifier: LGPL-2.1-or-later
#include <csignal>

#include "tests/cli/program/HostFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Works that take long enough to be interrupted.
class ProgramSignals : public HostFixture {
protected:
    ProgramSignals() {
        song("minute.mp3", 60);
        makeFolder("images");
    }

    /// So many times the same song, on an image.
    static std::vector<std::string> tracks(std::size_t count) {
        std::vector<std::string> arguments = {"audio", "--image", "images/mix.cue"};
        arguments.insert(arguments.end(), count, "minute.mp3");
        return arguments;
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

TEST_F(ProgramSignals, CtrlCWhileAddingCancelsTheRun) {
    const HostEnd end = interrupted(tracks(2000), "Adding 3 of 2000", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(end.err, HasSubstr("cancelled; nothing was written"));
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, ASecondSignalWhileAddingEndsAtOnce) {
    EXPECT_EQ(interrupted(tracks(2000), "Adding 3 of 2000", {SIGINT, SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, CtrlCWhileBurningLeavesNothingBehind) {
    const HostEnd end = interrupted(tracks(30), "Writing track 2 of 30", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(end.err, HasSubstr("cancelled; nothing was written"));
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, TheRequestToTerminateIsTreatedAlike) {
    EXPECT_EQ(interrupted(tracks(30), "Writing track 2 of 30", {SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, ASecondSignalWhileBurningEndsAtOnceAndLeavesNothingBehind) {
    EXPECT_EQ(interrupted(tracks(30), "Writing track 2 of 30", {SIGINT, SIGTERM}).status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, CtrlCWhileVerifyingLeavesNothingBehind) {
    const HostEnd end = interrupted(tracks(10), "Verifying", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(names("images"), IsEmpty());
}

TEST_F(ProgramSignals, ACancelledBurnKeepsTheImageThatWasThere) {
    ASSERT_EQ(run(tracks(1)).status, 0);
    const std::string before = contentOf(folder.file("images/mix.bin"));
    EXPECT_EQ(interrupted(tracks(30), "Writing track 2 of 30", {SIGINT}).status, 130);
    EXPECT_THAT(names("images"), ElementsAre("mix.bin", "mix.cue"));
    EXPECT_TRUE(contentOf(folder.file("images/mix.bin")) == before);
}

TEST_F(ProgramSignals, JsonTellsTheCancellationAndTheStatus) {
    std::vector<std::string> arguments = tracks(30);
    arguments.push_back("--json");
    const HostEnd end =
        interrupted(arguments, R"("burnProgressIsWriteingTrack","track":2)", {SIGINT});
    EXPECT_EQ(end.status, 130);
    EXPECT_TRUE(end.out.ends_with("{\"event\":\"burnProgressDidCanceled\"}\n"
                                  "{\"event\":\"exit\",\"status\":130}\n"));
}

TEST_F(ProgramSignals, ABurnThatWasKilledLeavesNothingThatTheNextOneDoesNotClearAway) {
    const HostEnd killed = interrupted(tracks(30), "Writing track 2 of 30", {SIGKILL});
    EXPECT_EQ(killed.status, 137);
    EXPECT_FALSE(std::filesystem::exists(folder.file("images/mix.cue")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("images/mix.bin")));
    EXPECT_EQ(run(tracks(1)).status, 0);
    EXPECT_THAT(names("images"), ElementsAre("mix.bin", "mix.cue"));
}

TEST_F(ProgramSignals, WatchingEndsWithCtrlC) {
    HostProgram program({"watch"}, here());
    ASSERT_TRUE(program.waitForOutput("There is no drive yet."));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().status, 130);
}

} // namespace
} // namespace quarner::testing
