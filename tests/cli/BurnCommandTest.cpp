// SPDX-License-Identifier: LGPL-2.1-or-later
#include <filesystem>

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// What the commands for all kinds of disc have in common.
using BurnCommandTest = EveryKindOfBurn;

TEST_P(BurnCommandTest, BurnsTheFilesOnTheOnlyDrive) {
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 0);
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
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_P(BurnCommandTest, KeepGoingWithNothingLeftIsARefusal) {
    EXPECT_EQ(burn({"--keep-going", "--json", "/m/none.wav", "/m/x.txt"}), 3);
    EXPECT_THAT(events(), ElementsAre("compilation", "exit"));
    EXPECT_EQ(objects()[0].at("items"), 0);
}

TEST_P(BurnCommandTest, AFailedBurnIsToldWithItsCode) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::PermissionDenied});
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 1);
    EXPECT_EQ(objects()[objects().size() - 2],
              (json{{"event", "burnProgressDidError"},
                    {"domain", "Quarn"},
                    {"code", signedCode(DRError::PermissionDenied)}}));
}

TEST_P(BurnCommandTest, AHundredFilesAreTooManyTracksForAnAudioDiscAlone) {
    host.platform.putSong("/m/short.mp3", {.seconds = 5});
    const std::vector<std::string> files(mostTracks, "/m/short.mp3");
    std::vector<std::string> arguments = {"--dry-run"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    EXPECT_EQ(burn(arguments), 0);
    arguments.push_back("/m/short.mp3");
    EXPECT_EQ(burn(arguments), GetParam() == DiscKind::Audio ? 4 : 0);
}

TEST_P(BurnCommandTest, ADryRunDoesEverythingUpToTheBurn) {
    EXPECT_EQ(burn({"--dry-run", "--json", "/m/a.mp3"}), 0);
    EXPECT_EQ(events()[events().size() - 2], "compilation");
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

TEST_P(BurnCommandTest, EndingAtOnceWhileAddingEndsTheCommand) {
    host.platform.onCall(ServiceCall::MovieWithFile, [this](const std::string&) { endAtOnce(); });
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 130);
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_P(BurnCommandTest, KeepGoingBurnsTheRest) {
    EXPECT_EQ(burn({"--keep-going", "--json", "/m/a.mp3", "/m/none.mp3"}), 0);
    EXPECT_THAT(events(), Contains("fileDidAdded").Times(1));
    EXPECT_THAT(events(), Contains("burnProgressDidDone"));
}

TEST_P(BurnCommandTest, ABurnThatFindsTheDiscTooSmallIsAMatterOfRoomToo) {
    host.platform.playBurns({.failsAt = 0.0, .code = DRError::MediaTooSmall});
    EXPECT_EQ(burn({"/m/a.mp3"}), 4);
}

TEST_P(BurnCommandTest, NothingIsBurntOnAnEmptyDrive) {
    writer->change([](DriveScript& drive) { drive.disc.reset(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_P(BurnCommandTest, ADriveThatIsGoneAtOnceEndsTheCommand) {
    host.platform.fail(ServiceCall::Devices);
    EXPECT_EQ(burn({"--image", disc().example, "/m/a.mp3"}), 1);
}

TEST_P(BurnCommandTest, TheImageReachesTheBurn) {
    EXPECT_EQ(burn({"--image", image(), "--capacity", "74", "/m/a.mp3"}), 0);
    ASSERT_EQ(host.images.size(), 1U);
    EXPECT_EQ(host.images[0].path, image());
    EXPECT_EQ(host.images[0].minutes, 74);
    EXPECT_EQ(host.images[0].disc, ImageRequest::Disc::Blank);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Image " + image());
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, BurnCommandTest,
                         testing::Values(DiscKind::Audio, DiscKind::Data), kindOfBurn);

} // namespace
} // namespace quarner::cli
