// SPDX-License-Identifier: LGPL-2.1-or-later
#include <filesystem>

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// What the commands for all kinds of disc have in common.
class BurnCommandTest : public BurnCommandFixture, public testing::WithParamInterface<DiscKind> {
protected:
    const DiscTraits& disc() const { return traitsOf(GetParam()); }

    /// Runs the command with a title and these arguments.
    int burn(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {disc().command, "--title", "T"});
        return host.run(arguments);
    }
    /// Lets a burn fail while it writes, with a text of the service's own.
    void failWhileBurning(DRError error, const std::string& info) {
        host.platform.playBurns({.progressReports = 2000});
        onceWhileBurning([=, this] {
            host.platform.lastBurn()->post(
                Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                           {DRErrorStatusKey,
                            Dictionary{{DRErrorStatusErrorKey, static_cast<std::uint32_t>(error)},
                                       {DRErrorStatusErrorInfoKey, info}}}});
        });
    }
    /// What a second Ctrl-C does.
    void endAtOnce() {
        host.loop.post([] { throw EndedAtOnce(); });
    }
    std::string image() const {
        return (std::filesystem::temp_directory_path() / disc().example).string();
    }
};

TEST_P(BurnCommandTest, BurnsTheFilesOnTheOnlyDrive) {
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 0);
    EXPECT_THAT(host.outLines().back(),
                HasSubstr("Burnt and verified: " + counted(2, disc().oneItem) + ", "));
    EXPECT_THAT(host.outLines().back(), HasSubstr(", on Writer"));
    EXPECT_EQ(host.err(), "");
    EXPECT_EQ(host.platform.burns().size(), 1U);
}

TEST_P(BurnCommandTest, JsonTellsEveryCallbackInOrderAndEndsWithTheStatus) {
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 0);
    EXPECT_THAT(events(), ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged",
                                      "fileDidAdded", "addFilesProgressDidEnd", "compilation",
                                      "burnProgressDidStarted", "burnProgressIsPreparing",
                                      "burnProgressIsOpeningTrack", "burnProgressDidChanaged",
                                      "burnProgressIsWriteingTrack", "burnProgressDidChanaged",
                                      "burnProgressIsWriteingTrack", "burnProgressDidCloseTrack",
                                      "burnProgressDidCloseSession", "burnProgressIsFinishing",
                                      "burnProgressIsVerifying", "burnProgressDidChanaged",
                                      "burnProgressIsVerifying", "burnProgressDidChanaged",
                                      "burnProgressIsVerifying", "burnProgressDidDone", "exit"));
}

TEST_P(BurnCommandTest, ARefusedFileKeepsTheBurnFromStarting) {
    EXPECT_EQ(burn({"/m/a.mp3", "/m/none.mp3"}), 3);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre("quarner: /m/none.mp3: no such file",
                            "quarner: 1 file of 2 refused, so nothing was burnt; --keep-going "
                            "burns the rest"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_P(BurnCommandTest, KeepGoingWithNothingLeftIsARefusal) {
    EXPECT_EQ(burn({"--keep-going", "--json", "/m/none.wav", "/m/x.txt"}), 3);
    EXPECT_THAT(events(), ElementsAre("compilation", "exit"));
    EXPECT_EQ(objects()[0].at("items"), 0);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre(HasSubstr("none.wav: no such file"), HasSubstr("x.txt: no such file"),
                            "quarner: nothing is left to burn"));
}

TEST_P(BurnCommandTest, AFailedBurnIsToldWithItsReasonAndWhatToDo) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::PermissionDenied});
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("the burn failed: the image may not be written there"));
    EXPECT_THAT(host.err(), HasSubstr("Choose a folder that you may write to"));
}

TEST_P(BurnCommandTest, TheServicesOwnTextOnAFailureIsShown) {
    failWhileBurning(DRError::NoSpace, "writing /m/x.bin: disk\nfull");
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("(writing /m/x.bin: disk\uFFFDfull)"));
}

TEST_P(BurnCommandTest, AServicesTextThatSaysNothingMoreIsNotRepeated) {
    const std::string text(textForBurnErrorCode(signedCode(DRError::DeviceVanished)));
    failWhileBurning(DRError::DeviceVanished, text);
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("the burn failed: " + text + "\n"));
}

TEST_P(BurnCommandTest, AHundredFilesAreTooManyTracksForAnAudioDiscAlone) {
    host.platform.putSong("/m/short.mp3", {.seconds = 5});
    const std::vector<std::string> files(mostTracks, "/m/short.mp3");
    std::vector<std::string> arguments = {"--dry-run"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    EXPECT_EQ(burn(arguments), 0);
    arguments.push_back("/m/short.mp3");
    const bool isAudio = GetParam() == DiscKind::Audio;
    EXPECT_EQ(burn(arguments), isAudio ? 4 : 0);
    EXPECT_THAT(host.err(), isAudio ? HasSubstr("at most 99 tracks") : HasSubstr(""));
}

TEST_P(BurnCommandTest, ADryRunDoesEverythingUpToTheBurn) {
    EXPECT_EQ(burn({"--dry-run", "/m/a.mp3"}), 0);
    EXPECT_THAT(host.out(), HasSubstr(GetParam() == DiscKind::Data ? "3.8 MB of 702.8 MB"
                                                                   : "00:03:22 of 01:19:57"));
    EXPECT_THAT(host.outLines().back(), HasSubstr("nothing was written"));
    EXPECT_EQ(host.platform.burns().size(), 0U);
    EXPECT_EQ(burn({"--dry-run", "/m/b.m4a", "/m/none.mp3"}), 3);
    host.platform.putSong("/m/long.mp3", {.seconds = 5000.0}, {.size = 800'000'000});
    EXPECT_EQ(burn({"--dry-run", "/m/long.mp3"}), 4);
}

TEST_P(BurnCommandTest, InterruptingTheAddingStopsAtTheNextFile) {
    std::future<void> interruption;
    host.platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == "/m/b.m4a")
            interruption = host.interrupt();
    });
    // On a background thread, which continues once the interruption has been dealt with.
    const auto making =
        GetParam() == DiscKind::Data ? ServiceCall::FileWithPath : ServiceCall::TrackForAudioFile;
    host.platform.onCall(making, [&](const std::string& path) {
        if (path == "/m/b.m4a")
            interruption.wait();
    });
    EXPECT_EQ(burn({"--json", "/m/a.mp3", "/m/b.m4a", "/m/c.mp3"}), 130);
    EXPECT_THAT(events(), Contains("addFilesProgressDidCanceled"));
    EXPECT_THAT(events(), Not(Contains("burnProgressDidStarted")));
    EXPECT_EQ(objects().back().at("status"), 130);
    EXPECT_THAT(host.err(), HasSubstr("cancelled; nothing was written"));
}

TEST_P(BurnCommandTest, InterruptingTheBurnWaitsForItsEnd) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 130);
    EXPECT_TRUE(host.platform.lastBurn()->isAborted());
    EXPECT_EQ(events()[events().size() - 2], "burnProgressDidCanceled");
}

TEST_P(BurnCommandTest, ABurnThatIsDoneBeforeItCouldBeInterruptedIsDone) {
    host.platform.fail(ServiceCall::Abort);
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 0);
}

TEST_P(BurnCommandTest, EndingAtOnceEndsThePlatformBeforeTheDelegateGoes) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { endAtOnce(); });
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 130);
    EXPECT_EQ(host.platformEndings, 1);
    EXPECT_EQ(objects().back(), (json{{"event", "exit"}, {"status", 130}}));
}

TEST_P(BurnCommandTest, ABurnThatWasCancelledMakesADiscUseless) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; the disc is not usable\n");
}

TEST_P(BurnCommandTest, ABurnThatWasCancelledWhileVerifyingLeavesACompleteDisc) {
    for (const bool isAtOnce : {false, true}) {
        host.platform.playBurns({.progressReports = 2000});
        host.atEachTurn = [=, this, isDone = false]() mutable {
            if (host.out().find("Verifying") != std::string::npos && !std::exchange(isDone, true))
                isAtOnce ? endAtOnce() : void(host.interrupt());
        };
        EXPECT_EQ(burn({"/m/a.mp3"}), 130);
        EXPECT_EQ(host.err(), "quarner: cancelled; the disc is complete, but was not verified\n");
        writer->ejectMedia();
        writer->insert({});
    }
}

TEST_P(BurnCommandTest, ABurnThatWasEndedAtOnceMayHaveMadeTheDiscUseless) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { endAtOnce(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; the disc may not be usable\n");
}

TEST_P(BurnCommandTest, ABurnThatWasCancelledLeavesNoImage) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"--image", image(), "/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written\n");
}

TEST_P(BurnCommandTest, ABurnThatWasEndedAtOnceMayHaveMadeItsImage) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { endAtOnce(); });
    EXPECT_EQ(burn({"--image", image(), "/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written, unless the image was complete "
                          "already\n");
}

TEST_P(BurnCommandTest, NothingWasWrittenBeforeTheBurn) {
    host.platform.onCall(ServiceCall::MovieWithFile, [this](const std::string&) { endAtOnce(); });
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written\n");
}

TEST_P(BurnCommandTest, KeepGoingBurnsTheRest) {
    EXPECT_EQ(burn({"--keep-going", "/m/a.mp3", "/m/none.mp3"}), 0);
    EXPECT_THAT(host.err(), HasSubstr("/m/none.mp3: no such file"));
    EXPECT_THAT(host.outLines().back(),
                HasSubstr("Burnt and verified: " + counted(1, disc().oneItem) + ", "));
}

TEST_P(BurnCommandTest, ABurnThatFindsTheDiscTooSmallIsAMatterOfRoomToo) {
    host.platform.playBurns({.failsAt = 0.0, .code = DRError::MediaTooSmall});
    EXPECT_EQ(burn({"/m/a.mp3"}), 4);
    EXPECT_THAT(host.err(), HasSubstr(disc().overhead));
}

TEST_P(BurnCommandTest, AnEmptyDriveIsToldAsSuch) {
    writer->change([](DriveScript& drive) { drive.disc.reset(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("there is no disc in the drive"));
}

TEST_P(BurnCommandTest, ADriveThatIsGoneAtOnceEndsTheCommand) {
    host.platform.fail(ServiceCall::Devices);
    EXPECT_EQ(burn({"--image", disc().example, "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("the burn failed: the drive was unplugged"));
}

TEST_P(BurnCommandTest, TheImageReachesTheBurn) {
    EXPECT_EQ(burn({"--image", image(), "--capacity", "74", "/m/a.mp3"}), 0);
    ASSERT_EQ(host.images.size(), 1U);
    EXPECT_EQ(host.images[0].path, image());
    EXPECT_EQ(host.images[0].minutes, 74);
    EXPECT_EQ(host.images[0].disc, ImageRequest::Disc::Blank);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Image " + image());
    EXPECT_THAT(host.outLines().back(), HasSubstr("on " + image()));
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, BurnCommandTest,
                         testing::Values(DiscKind::Audio, DiscKind::Data), [](const auto& suite) {
                             return std::string(traitsOf(suite.param).command);
                         });

} // namespace
} // namespace quarner::cli
