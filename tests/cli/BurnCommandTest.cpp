// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/BurnCommandFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

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
    EXPECT_EQ(delegateObjects()[0].at("items"), 0);
}

TEST_P(BurnCommandTest, AFailedBurnIsToldWithItsCode) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::PermissionDenied});
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 1);
    EXPECT_EQ(delegateObjects()[delegateObjects().size() - 2],
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

TEST_P(BurnCommandTest, InterruptingTheSearchAddsNothing) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.file("first"));
    std::filesystem::create_directories(folder.file("second"));
    const std::string song = folder.file("first/a.mp3");
    std::ofstream(song).flush();
    host.platform.putSong(song, {.seconds = 10});
    const int opened = inotify_init1(IN_CLOEXEC);
    inotify_add_watch(opened, folder.file("second").c_str(), IN_OPEN);
    host.loop.post([opened] { // waits until the first folder has been searched
        std::array<char, 4096> event = {};
        EXPECT_GT(read(opened, event.data(), event.size()), 0);
    });
    host.interrupt();
    EXPECT_EQ(burn({"--json", "--recursive", folder.file("first"), folder.file("second")}), 130);
    EXPECT_THAT(events(), ElementsAre("compilation", "exit"));
    EXPECT_EQ(delegateObjects()[0].at("items"), 0);
    close(opened);
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
    EXPECT_EQ(burn({"--image", (std::string("mix") + extensionFor(GetParam())), "/m/a.mp3"}), 1);
}

TEST_P(BurnCommandTest, TheImageReachesTheBurn) {
    EXPECT_EQ(burn({"--image", image(), "--capacity", "74", "/m/a.mp3"}), 0);
    ASSERT_EQ(host.images.size(), 1U);
    EXPECT_EQ(host.images[0].path, image());
    EXPECT_EQ(host.images[0].minutes, 74);
    EXPECT_FALSE(host.images[0].loadExisting);
    EXPECT_EQ(host.platform.lastBurn()->device()->displayName(), "Image " + image());
}

TEST_P(BurnCommandTest, TheFilesKeepTheirOrderUnlessTheyAreToBeSorted) {
    const auto order = [&](std::vector<std::string> options) {
        options.insert(options.end(), {"--dry-run", "--json", "/m/c.mp3", "/m/a.mp3", "/m/b.m4a"});
        EXPECT_EQ(burn(options), 0);
        std::string names;
        for (const json& object : objects())
            if (object.at("event") == "fileDidAdded")
                names += object.at("item").at("itemName").get<std::string>().substr(0, 1);
        return names;
    };
    EXPECT_EQ(order({}), "cab");
    EXPECT_EQ(order({"--sort"}), "abc");
}

TEST_P(BurnCommandTest, APlaylistStandsForItsFilesAndAFolderForThoseInIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.file("album/.hidden"));
    for (const char* const song : {"album/10.mp3", "album/2.mp3", "album/.hidden/x.mp3"}) {
        std::ofstream(folder.file(song)).flush();
        host.platform.putSong(folder.file(song), {.seconds = 10});
    }
    std::ofstream(folder.file("album/cover.jpg")).flush();
    std::ofstream(folder.file("mix.m3u")) << "/m/c.mp3\n/m/none.mp3\n";
    const auto added = [&] {
        std::vector<std::string> names;
        for (const json& object : objects())
            if (object.at("event") == "fileDidAdded")
                names.push_back(object.at("item").at("itemName"));
        return names;
    };
    EXPECT_EQ(
        burn({"--json", "--dry-run", "--recursive", "/m/b.m4a", folder.file("album"), "/m/a.mp3"}),
        0);
    EXPECT_THAT(added(), ElementsAre("b.m4a", "2.mp3", "10.mp3", "a.mp3"));
    EXPECT_EQ(burn({"--json", "--dry-run", folder.file("album")}), 3);
    EXPECT_EQ(burn({"--json", "--dry-run", folder.file("mix.m3u")}), 3);
    EXPECT_THAT(added(), ElementsAre("c.mp3"));
}

TEST_P(BurnCommandTest, WaitsForADiscThatCanBeBurnt) {
    writer->change([](DriveScript& script) { script.disc.reset(); });
    std::vector<DiscScript> discs = {{.type = DRDeviceMediaTypeDVDR}, {}};
    host.atEachTurn = [&, waits = std::size_t{0}]() mutable {
        const std::size_t told = countOf(host.out(), "waitsFor");
        if (told > waits && waits < discs.size()) {
            waits = told;
            const DiscScript disc = discs[waits - 1];
            writer->change([&](DriveScript& script) { script.disc = disc; });
        }
    };
    EXPECT_EQ(burn({"--wait", "--json", "/m/a.mp3"}), 0);
    EXPECT_EQ(host.platform.burns().size(), 1U);
}

TEST_P(BurnCommandTest, CtrlCEndsTheWaitForADisc) {
    writer->change([](DriveScript& script) { script.disc.reset(); });
    host.atEachTurn = [&, isDone = false]() mutable {
        if (countOf(host.out(), "waitsFor") > 0 && !std::exchange(isDone, true))
            host.interrupt();
    };
    EXPECT_EQ(burn({"--wait", "--json", "/m/a.mp3"}), 130);
}

TEST_P(BurnCommandTest, EjectsTheDiscThatIsBurnt) {
    EXPECT_EQ(burn({"--eject", "/m/a.mp3"}), 0);
    EXPECT_FALSE(writer->mediaIsPresent());
    writer->insert({});
    host.platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(burn({"--eject", "/m/a.mp3"}), 0) << "the disc is burnt all the same";
    EXPECT_TRUE(writer->mediaIsPresent());
}

TEST_P(BurnCommandTest, ADiscThatWasNotBurntStaysInTheDrive) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::WriteFailed});
    EXPECT_EQ(burn({"--eject", "/m/a.mp3"}), 1);
    EXPECT_TRUE(writer->mediaIsPresent());
}

TEST_P(BurnCommandTest, ProgramsAreToldWhatTheProjectReportsToo) {
    EXPECT_EQ(burn({"--json", "--keep-going", "/m/a.mp3", "/m/none.mp3"}), 0);
    const auto all = objects();
    const auto named = [&](const char* name) {
        std::vector<json> found;
        std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                     [&](const json& object) { return object.at("event") == name; });
        return found;
    };
    ASSERT_EQ(named("fileRefused").size(), 1U);
    const json refusal = named("fileRefused").front();
    EXPECT_EQ(refusal.at("path"), "/m/none.mp3");
    EXPECT_EQ(refusal.at("uri"), "file:///m/none.mp3");
    EXPECT_EQ(refusal.at("reason"), "missing");
    double fraction = 0;
    for (const json& progress : named("burnProgress")) {
        EXPECT_GE(progress.at("fraction"), fraction);
        fraction = progress.at("fraction");
    }
    EXPECT_EQ(fraction, 1.0);
    ASSERT_EQ(named("burnEnded").size(), 1U);
    EXPECT_EQ(named("burnEnded").front().at("outcome"), "done");
}

TEST_P(BurnCommandTest, ProgramsAreToldWhatAFailureIsAbout) {
    failWhileBurning(DRError::NoSpace, "disk full");
    EXPECT_EQ(burn({"--json", "/m/a.mp3"}), 1);
    const json end = objects()[objects().size() - 2];
    EXPECT_EQ(end.at("event"), "burnEnded");
    EXPECT_EQ(end.at("outcome"), "failed");
    EXPECT_EQ(end.at("code"), signedCode(DRError::NoSpace));
    EXPECT_EQ(end.at("message"), "disk full");
    EXPECT_NE(end.at("advice"), "");
}

TEST_P(BurnCommandTest, ProgramsAreToldWhyNoBurnStarts) {
    const auto expectRefusal = [&](DRError code, int status, const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(burn(arguments), status);
        const std::vector<json> all = objects();
        const json& refusal = all.at(all.size() - 2);
        EXPECT_EQ(refusal.at("event"), "burnRefused");
        EXPECT_EQ(refusal.value("code", 0), signedCode(code)) << refusal;
        EXPECT_NE(refusal.value("text", ""), "") << refusal;
    };
    const auto expectRefusalOf = [&](const DiscScript& disc, DRError code, int status) {
        writer->ejectMedia();
        writer->insert(disc);
        expectRefusal(code, status, {"/m/a.mp3"});
    };
    expectRefusalOf({.type = DRDeviceMediaTypeDVDR}, DRError::WrongMedia, 1);
    expectRefusalOf({.isBlank = false}, DRError::MediaNotWritable, 1);
    expectRefusalOf({.blocksFree = 750}, DRError::MediaTooSmall, 4);
    writer->ejectMedia();
    expectRefusal(DRError::MediaNotPresent, 1, {"/m/a.mp3"});
    writer->change([](DriveScript& script) { script.isTransitioning = true; });
    expectRefusal(DRError::MediaNotPresent, 1, {"/m/a.mp3"});
    writer->change([](DriveScript& script) {
        script.isTransitioning = false;
        script.disc = DiscScript();
    });
    host.platform.putSong("/m/short.mp3", {.seconds = 5});
    if (GetParam() == DiscKind::Audio)
        expectRefusal(DRError::TooManyTracks, 4, std::vector<std::string>(100, "/m/short.mp3"));
    host.platform.unplug(writer);
    host.platform.fail(ServiceCall::Devices);
    expectRefusal(DRError::DeviceVanished, 1,
                  {"--image", std::string("mix") + extensionFor(GetParam()), "/m/a.mp3"});
    EXPECT_EQ(host.platform.burns().size(), 0U);
}

TEST_P(BurnCommandTest, ProgramsAreToldWhetherTheDiscWasEjected) {
    EXPECT_EQ(burn({"--json", "--eject", "/m/a.mp3"}), 0);
    EXPECT_EQ(objects()[objects().size() - 2],
              (json{{"event", "eject"}, {"name", "Writer"}, {"ejected", true}}));
    writer->insert({});
    host.platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(burn({"--json", "--eject", "/m/a.mp3"}), 0);
    const json eject = objects()[objects().size() - 2];
    EXPECT_EQ(eject.at("ejected"), false);
    EXPECT_NE(eject.at("text"), "");
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, BurnCommandTest,
                         testing::Values(DiscKind::Audio, DiscKind::Data), kindOfBurn);

} // namespace
} // namespace quarner::cli
