// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "quarner/platform/Platform.h"
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::chrono::milliseconds aMoment(50);

class ScriptedPlatformTest : public AudioBurnerTest {};

TEST(ScriptedPlatform, IsInstalledWhileItLives) {
    {
        const ScriptedPlatform platform;
        platform.log();
        EXPECT_TRUE(QuarnerDevice::devices().empty());
    }
    EXPECT_EQ(currentPlatform()->recording->trackForAudioFile("/a.mp3"), nullptr);
}

TEST(ScriptedPlatform, LeavesAPlatformInstalledAfterItAlone) {
    auto first = std::make_unique<ScriptedPlatform>();
    ScriptedPlatform second;
    second.addDrive({.name = "Second"});
    first.reset();
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre("Second"));
}

TEST(ScriptedPlatform, LetsWorkThatWaitsForTheMainThreadGoWhenItIsDestroyed) {
    RecordingDelegate delegate;
    {
        ScriptedPlatform platform;
        platform.putSong("/a.mp3", {.seconds = 10});
        const auto burner = Quarner::audioCDBurner();
        burner->setDelegate(&delegate);
        burner->addFiles({"/a.mp3"});
        // The run waits for the main thread, which never serves it.
        const auto deadline = std::chrono::steady_clock::now() + ScriptedPlatform::defaultTimeout;
        while (delegate.count("addFilesProgressDidChanged(a.mp3, 1, 1)") == 0 &&
               std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
    }
    EXPECT_THAT(delegate.calls(), Contains("addFilesProgressDidEnd"));
}

TEST_F(ScriptedPlatformTest, AddsAFileAndBurnsIt) {
    platform.putSong("/music/one.mp3", {.seconds = 10});
    const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_TRUE(burner->addFiles({"/music/one.mp3"}));
    finishRuns();
    burner->burnWithDevice(QuarnerDevice("Writer"), "Mix");
    platform.lastBurn()->play();
    EXPECT_FALSE(drive->ejectMedia());
    finishRuns();
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted",
                            "addFilesProgressDidChanged(one.mp3, 1, 1)",
                            "fileDidAdded(/music/one.mp3)", "addFilesProgressDidEnd",
                            "burnProgressDidStarted", "burnProgressIsPreparing",
                            "burnProgressIsOpeningTrack(1, 1)", "burnProgressDidChanaged(0.5, 0)",
                            "burnProgressIsWriteingTrack(1, 1)", "burnProgressDidChanaged(1, 0)",
                            "burnProgressIsWriteingTrack(1, 1)", "burnProgressDidCloseTrack(1, 1)",
                            "burnProgressDidCloseSession", "burnProgressIsFinishing",
                            "burnProgressIsVerifying", "burnProgressDidChanaged(0.5, 0)",
                            "burnProgressIsVerifying", "burnProgressDidChanaged(1, 0)",
                            "burnProgressIsVerifying", "burnProgressDidDone"));
    EXPECT_TRUE(drive->ejectMedia());
}

TEST_F(ScriptedPlatformTest, ABurnThatIsRefusedDoesNotTakeTheDriveFromAnotherOne) {
    const auto drive = platform.addDrive({.disc = DiscScript{}});
    platform.playBurns();
    const DRLayout layout = {std::make_shared<DRTrack>()};
    for (int i = 0; i < 2; ++i)
        currentPlatform()->recording->burnForDevice(drive)->writeLayout(layout);
    EXPECT_TRUE(platform.burns()[0]->isPlaying());
    EXPECT_TRUE(platform.lastBurn()->isOver());
    EXPECT_FALSE(drive->ejectMedia());
}

TEST_F(ScriptedPlatformTest, AStoryMayDoWithoutVerification) {
    const auto isVerifying = [](const BurnRecord& record) {
        return record.state == DRStatusStateVerifying;
    };
    EXPECT_TRUE(std::ranges::any_of(recordsOf({}, {}), isVerifying));
    EXPECT_TRUE(std::ranges::none_of(recordsOf({.verifies = false}, {}), isVerifying));
}

TEST_F(ScriptedPlatformTest, ABurnFailsAtAFractionWithACode) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    platform.playBurns({.failsAt = 0.6, .code = DRError::NoSpace});
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    finishRuns();
    ASSERT_EQ(delegate.errors().size(), 1U);
    EXPECT_EQ(delegate.errors().front(), (BurnError{"Quarn", signedCode(DRError::NoSpace), {}}));
    EXPECT_EQ(delegate.count("burnProgressDidChanaged(0.5, 0)"), 1U);
    EXPECT_EQ(delegate.count("burnProgressDidChanaged(1, 0)"), 0U);
}

TEST_F(ScriptedPlatformTest, ABurnFailsInAState) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    platform.playBurns({.failsIn = DRStatusStateVerifying, .code = DRError::VerifyFailed});
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    finishRuns();
    EXPECT_EQ(delegate.count("burnProgressIsVerifying"), 1U);
    EXPECT_EQ(delegate.count("burnProgressDidDone"), 0U);
    EXPECT_EQ(delegate.errors().size(), 1U);
}

TEST_F(ScriptedPlatformTest, ABurnThatPlaysFailsWhenItsDriveIsUnplugged) {
    putSongs({"/one.mp3"});
    compile({"/one.mp3"});
    const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    platform.lastBurn()->play();
    ASSERT_TRUE(platform.runUntil([&] { return delegate.count("burnProgressIsPreparing") == 1; }));
    platform.unplug(drive);
    finishRuns();
    ASSERT_EQ(delegate.errors().size(), 1U);
    EXPECT_EQ(delegate.errors().front().code, signedCode(DRError::DeviceVanished));
    EXPECT_TRUE(QuarnerDevice::devices().empty());
}

TEST_F(ScriptedPlatformTest, HeldBackgroundWorkBeginsInTheOrderThatTheTestWants) {
    putSongs({"/a.mp3", "/b.mp3"});
    platform.backgroundQueue().hold();
    burner->addFiles({"/a.mp3"});
    burner->addFiles({"/b.mp3"});
    finishRuns();
    EXPECT_EQ(platform.backgroundQueue().waiting(), 2U);
    EXPECT_EQ(count(), 0U);
    EXPECT_TRUE(platform.backgroundQueue().releaseOne(1));
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/b.mp3"));
    platform.backgroundQueue().release();
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/b.mp3", "/a.mp3"));
    EXPECT_FALSE(platform.backgroundQueue().releaseOne());
}

TEST_F(ScriptedPlatformTest, AHeldMainQueueStopsTheRunAtThePlayTime) {
    putSongs({"/a.mp3"});
    platform.mainQueue().hold();
    burner->addFiles({"/a.mp3"});
    finishRuns();
    EXPECT_EQ(platform.mainQueue().waiting(), 1U);
    EXPECT_EQ(delegate.count("addFilesProgressDidChanged(a.mp3, 1, 1)"), 1U);
    EXPECT_EQ(count(), 0U);
    EXPECT_TRUE(platform.mainQueue().releaseOne());
    finishRuns();
    EXPECT_EQ(count(), 1U);
}

TEST_F(ScriptedPlatformTest, WorkPostedToTheMainThreadRunsLaterInOrderAndNotWithinOtherPostedWork) {
    const auto dispatch = currentPlatform()->dispatch;
    std::vector<int> order;
    dispatch->asyncMain([&] {
        order.push_back(1);
        dispatch->asyncMain([&] { order.push_back(3); });
        EXPECT_FALSE(platform.runOnce());
    });
    dispatch->asyncMain([&] { order.push_back(2); });
    EXPECT_THAT(order, ElementsAre());
    finishRuns();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(ScriptedPlatformTest, PostedWorkIsHeldWithTheMainQueue) {
    platform.mainQueue().hold();
    bool hasRun = false;
    currentPlatform()->dispatch->asyncMain([&] { hasRun = true; });
    finishRuns();
    EXPECT_EQ(platform.mainQueue().waiting(), 1U);
    EXPECT_FALSE(hasRun);
    platform.mainQueue().release();
    finishRuns();
    EXPECT_TRUE(hasRun);
}

TEST_F(ScriptedPlatformTest, TagsAreAsScripted) {
    const MediaTags tags = {.title = "One", .artist = "A", .album = "B", .track = 7};
    platform.putSong("/a.mp3", {.seconds = 1, .tags = tags});
    EXPECT_EQ(currentPlatform()->media->tags("/a.mp3"), tags);
    EXPECT_EQ(currentPlatform()->media->tags("/b.mp3"), MediaTags());
    platform.fail(ServiceCall::Tags);
    EXPECT_EQ(currentPlatform()->media->tags("/a.mp3"), MediaTags());
}

TEST_F(ScriptedPlatformTest, RunUntilGivesUpAfterItsTimeout) {
    EXPECT_FALSE(platform.runUntil([] { return false; }, aMoment));
    EXPECT_TRUE(platform.runUntil([] { return true; }, std::chrono::milliseconds(0)));
}

TEST_F(ScriptedPlatformTest, IsNotIdleWhileBackgroundWorkRuns) {
    std::atomic<bool> mayEnd = false;
    currentPlatform()->dispatch->asyncGlobal([&] {
        while (!mayEnd)
            std::this_thread::yield();
    });
    EXPECT_FALSE(platform.runUntilIdle(aMoment));
    mayEnd = true;
    EXPECT_TRUE(platform.runUntilIdle());
}

TEST_F(ScriptedPlatformTest, AFaultStrikesItsSubjectAndAsOftenAsItIsTold) {
    putSongs({"/a.mp3", "/b.mp3"});
    platform.fail(ServiceCall::Attributes, {.subject = "/a.mp3", .times = 1});
    const auto files = currentPlatform()->files;
    EXPECT_TRUE(files->attributes("/b.mp3"));
    EXPECT_FALSE(files->attributes("/a.mp3"));
    EXPECT_TRUE(files->attributes("/a.mp3"));
    platform.fail(ServiceCall::Attributes);
    EXPECT_FALSE(files->attributes("/b.mp3"));
    platform.repair(ServiceCall::Attributes);
    EXPECT_TRUE(files->attributes("/b.mp3"));
    EXPECT_EQ(platform.calls(ServiceCall::Attributes), 5U);
}

TEST_F(ScriptedPlatformTest, EveryCallCanFail) {
    platform.putSong("/a.mp3", {.seconds = 10}, {.displayName = "A", .icon = {{"audio"}}});
    platform.putFile("/alias", {.aliasOf = "/a.mp3"});
    platform.setMovieFileTypes({"mp3"});
    platform.setText("key", "Text");
    const auto drive = platform.addDrive({.currentSpeed = 1.0, .disc = DiscScript{}});
    const auto services = currentPlatform();
    const auto results = [&] {
        bool hasRun = false;
        services->dispatch->syncMain([&] { hasRun = true; });
        return std::vector<bool>{
            !services->recording->devices().empty(),
            std::static_pointer_cast<ScriptedBurn>(services->recording->burnForDevice(drive))
                    ->device() != nullptr,
            services->recording->trackForAudioFile("/a.mp3") != nullptr,
            !drive->info().empty(),
            !drive->status().empty(),
            services->media->movieWithFile("/a.mp3") != nullptr,
            !services->media->movieFileTypes(0).empty(),
            services->files->displayName("/a.mp3") == "A",
            services->files->attributes("/a.mp3").has_value(),
            !services->files->icon("/a.mp3").names.empty(),
            services->files->resolveAlias("/alias").has_value(),
            hasRun,
            services->text->compareLocalizedCaseInsensitive("a", "b") != 0,
            services->text->localizedNumber(1.5, 1) == "1.5",
            services->text->localizedString("key") == "Text",
            drive->ejectMedia()};
    };
    EXPECT_THAT(results(), ::testing::Each(true));
    drive->insert({});
    for (const ServiceCall call :
         {ServiceCall::Devices, ServiceCall::BurnForDevice, ServiceCall::TrackForAudioFile,
          ServiceCall::DriveInfo, ServiceCall::DriveStatus, ServiceCall::EjectMedia,
          ServiceCall::MovieWithFile, ServiceCall::MovieFileTypes, ServiceCall::DisplayName,
          ServiceCall::Attributes, ServiceCall::IconOfFile, ServiceCall::ResolveAlias,
          ServiceCall::AsyncGlobal, ServiceCall::SyncMain, ServiceCall::AsyncMain,
          ServiceCall::CompareTexts, ServiceCall::LocalizedNumber, ServiceCall::LocalizedString})
        platform.fail(call);
    EXPECT_THAT(results(), ::testing::Each(false));
    services->dispatch->asyncGlobal([] { FAIL(); });
}

TEST_F(ScriptedPlatformTest, ABurnThatCannotBeWrittenFails) {
    const auto drive = platform.addDrive({});
    platform.fail(ServiceCall::WriteLayout);
    currentPlatform()->recording->burnForDevice(drive)->writeLayout({});
    EXPECT_TRUE(platform.lastBurn()->isStarted());
    EXPECT_TRUE(platform.lastBurn()->isOver());
}

TEST_F(ScriptedPlatformTest, ABurnThatFailsAtOnceIsHeardOnAThreadThatNeverHadARunLoop) {
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    platform.fail(ServiceCall::WriteLayout);
    burner->_content.append(trackOf(300, 150));
    const QuarnerDevice handle("Writer");
    std::thread other([&] {
        burner->burnWithDevice(handle, "Disc");
        EXPECT_TRUE(platform.runUntilIdle());
    });
    other.join();
    ASSERT_EQ(delegate.errors().size(), 1U);
    EXPECT_EQ(delegate.errors()[0].code, signedCode(DRError::WriteFailed));
}

TEST_F(ScriptedPlatformTest, ADelegateThatThrowsDoesNotSilenceTheRunLoop) {
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    burner->_content.append(trackOf(300, 150));
    burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
    delegate.whenCalled = [](const std::string&) { throw std::runtime_error("a host's error"); };
    platform.lastBurn()->post({.state = DRStatusStatePreparing});
    EXPECT_THROW(platform.runUntilIdle(), std::runtime_error);
    delegate.whenCalled = nullptr;
    delegate.forget();
    platform.lastBurn()->post({.state = DRStatusStateFinishing});
    EXPECT_TRUE(platform.runUntilIdle());
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressIsFinishing"));
}

TEST_F(ScriptedPlatformTest, AnUnpluggedDriveKeepsItsNameAndHasNoDisc) {
    const auto drive =
        platform.addDrive({.name = "Writer", .isTransitioning = true, .disc = DiscScript{}});
    const QuarnerDevice handle("Writer");
    ASSERT_TRUE(handle.isDiscInDevice());
    platform.unplug(drive);
    EXPECT_EQ(handle.deviceName(), "Writer");
    EXPECT_TRUE(handle.cdBurnEnabled());
    EXPECT_FALSE(handle.isDiscInDevice());
    EXPECT_FALSE(handle.isCheckingDisc());
    EXPECT_FALSE(handle.isDiscBlank());
    EXPECT_EQ(handle.freeTimeOfDisc(), 0U);
    EXPECT_EQ(handle.freeSizeOfDisc(), 0U);
    EXPECT_EQ(handle.availableBurnSpeeds(), std::nullopt);
    drive->insert({});
    EXPECT_FALSE(handle.isDiscInDevice());
    EXPECT_FALSE(drive->ejectMedia());
}

TEST_F(ScriptedPlatformTest, ABurnWithoutADriveFailsWhenItIsStarted) {
    currentPlatform()->recording->burnForDevice(nullptr)->writeLayout({});
    EXPECT_TRUE(platform.lastBurn()->isOver());
}

TEST_F(ScriptedPlatformTest, AnAliasThatLeadsBackToItselfStandsForNothing) {
    platform.putFile("/a", {.aliasOf = "/b"});
    platform.putFile("/b", {.aliasOf = "/a"});
    EXPECT_EQ(currentPlatform()->files->resolveAlias("/a"), std::nullopt);
}

TEST_F(ScriptedPlatformTest, EachThreadHasARunLoopOfItsOwn) {
    QuarnerDevice handle("none");
    std::thread other([&] {
        EXPECT_NE(currentPlatform()->recording->currentRunLoopCenter(), nullptr);
        platform.plug({.name = "New"});
        EXPECT_TRUE(platform.runOnce());
        EXPECT_FALSE(platform.runOnce());
    });
    other.join();
    EXPECT_TRUE(platform.runOnce());
    EXPECT_FALSE(platform.runOnce());
}

TEST_F(ScriptedPlatformTest, ADriveGoesOnAnsweringAfterThePlatformIsGone) {
    std::shared_ptr<ScriptedDrive> drive;
    {
        ScriptedPlatform shortLived;
        drive = shortLived.plug({.name = "Kept", .disc = DiscScript{}});
    }
    EXPECT_EQ(drive->displayName(), "Kept");
    EXPECT_TRUE(drive->ejectMedia());
}

} // namespace
} // namespace quarner::testing
