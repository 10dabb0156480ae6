// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/e2e/DiscReaders.h"
#include "tests/gtk/DesktopServices.h"
#include "tests/gtk/WindowFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;

constexpr std::uint64_t framesPerSecond = 75;
constexpr std::uint8_t write10 = 0x2A;

class WindowBurns : public WindowTest {
protected:
    std::vector<std::string> fiveSongs() const {
        return {song("e.mp3", 15), song("a.mp3", 11), song("b.mp3", 12), song("c.mp3", 13),
                song("d.mp3", 14)};
    }

    /// The whole seconds of the tracks of an image, as an independent program finds them.
    static std::vector<std::uint64_t> secondsIn(const std::string& cue) {
        std::vector<std::uint64_t> seconds;
        for (const TrackPlace& track : placesByCdrdao(cue))
            seconds.push_back((track.end - track.start) / framesPerSecond);
        return seconds;
    }

    void compileInAnotherOrder(const HostSettings& settings = {}) {
        start({}, settings);
        dropFiles(fiveSongs(), find("Drop music here"));
        waitForRows({"e.mp3", "a.mp3", "b.mp3", "c.mp3", "d.mp3"});
        dragRow("e.mp3", "d.mp3", true);
        waitForRows({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    }
    void burnAndCancel() {
        clickWhenReady("Burn", "push button");
        waitUntil(
            [&] {
                const auto bar = program().find(
                    [](const SeenWidget& one) { return one.role() == "progress bar"; });
                return bar && bar->isVisible() && !bar->name().starts_with("Adding");
            },
            "burn");
        activateWhenReady("Cancel", "push button");
        waitUntil(
            [&] {
                const auto cancel = program().find([](const SeenWidget& one) {
                    return one.role() == "push button" && one.name() == "Cancel";
                });
                return !cancel || !cancel->isSensitive();
            },
            "cancellation");
        std::filesystem::remove(gate);
        find("The burn was cancelled.");
    }
};

TEST_F(WindowBurns, AnImageAfterAnAttemptThatWasCancelled) {
    compileInAnotherOrder(gated());
    const std::string cue = folder.file("mix.cue");
    chooseImage(cue);
    burnAndCancel();
    EXPECT_FALSE(std::filesystem::exists(cue));
    activateWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    EXPECT_THAT(secondsIn(cue), ElementsAre(11, 12, 13, 14, 15));
}

TEST_F(WindowBurns, ADiscAfterAnAttemptThatWasCancelled) {
    const auto recorder = machine.plug({.medium = std::nullopt});
    compileInAnotherOrder();
    EXPECT_FALSE(find("Burn", "push button").isSensitive());
    recorder->setDelay(std::chrono::milliseconds(1));
    recorder->insert(Medium::blankCDR());
    burnAndCancel();
    recorder->setDelay({});
    recorder->insert(Medium::blankCDR());
    activateWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 5U);
    EXPECT_EQ(static_cast<std::uint64_t>(disc.tracks[0].length) / framesPerSecond, 11U);
}

TEST_F(WindowBurns, AnImageThatIsThereAgainOnlyIfItsUserAgrees) {
    const std::string cue = folder.file("mix.cue");
    start({song("a.mp3", 11)});
    chooseImage(cue);
    clickWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    const auto written = std::filesystem::last_write_time(cue);
    activateWhenReady("Burn", "push button");
    find("Replace “mix.cue”?");
    press("Escape");
    waitUntil([&] { return !isThere("Replace “mix.cue”?"); }, "end of the question");
    EXPECT_EQ(std::filesystem::last_write_time(cue), written);
    activateWhenReady("Burn", "push button");
    find("Replace “mix.cue”?");
    find("Replace", "push button").activate();
    waitUntil([&] { return std::filesystem::last_write_time(cue) != written; }, "new image");
}

TEST_F(WindowBurns, ADataDiscWithItsTitle) {
    const std::string iso = folder.file("mix.iso");
    start({"--data", song("a.mp3", 11)});
    waitForRows({"a.mp3"});
    click("Title of the disc", "text");
    type("Summer mix");
    chooseImage(iso);
    clickWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    EXPECT_THAT(runProgram({"isoinfo", "-d", "-i", iso}).output,
                ::testing::HasSubstr("Volume id: SUMMER_MIX"));
}

TEST_F(WindowBurns, NoLongerWhenItsWindowIsClosedAndThatIsConfirmed) {
    const std::string cue = folder.file("mix.cue");
    start(fiveSongs(), gated());
    chooseImage(cue);
    clickWhenReady("Burn", "push button");
    find("Cancel", "push button");
    press("ctrl+w");
    find("Stop the burn?");
    find("Stop and Close", "push button").activate();
    waitUntil([&] { return !isThere("Stop the burn?"); }, "end of the question");
    waitUntil([&] { return !find("Cancel", "push button").isSensitive(); }, "cancellation");
    std::filesystem::remove(gate);
    const HostEnd end = window->wait();
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_FALSE(std::filesystem::exists(cue));
}

TEST_F(WindowBurns, OverARewritableDiscOnlyIfItsUserAgrees) {
    Medium written = Medium::audioCD({1000, 1000});
    written.kind = Medium::Kind::CDRW;
    const auto recorder = machine.plug({.medium = written});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    find("Erase the disc?");
    find("Erase and Burn", "push button").activate();
    find("The disc is burnt and verified.");
    EXPECT_EQ(recorder->writtenDisc()->tracks.size(), 1U);
}

TEST_F(WindowBurns, OnADriveThatWasAttachedLater) {
    start({song("a.mp3", 11)});
    find("Drive: No drive");
    const auto recorder = machine.plug({});
    find("Drive: QUARNER DISC RECORDER");
    clickWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    recorder->unplug();
    find("Drive: No drive");
}

TEST_F(WindowBurns, OnNoOtherDriveThanTheChosenOneIfThatIsUnplugged) {
    const auto chosen = machine.plug({.product = "FIRST"});
    machine.plug({.product = "SECOND"});
    start({song("a.mp3", 11)});
    find("Drive: QUARNER FIRST");
    chosen->unplug();
    find("Drive: No drive");
    find("The drive was unplugged. Choose another one, or an image file.");
    EXPECT_FALSE(find("Burn", "push button").isSensitive());
    chosen->replug();
    find("Drive: QUARNER FIRST");
}

TEST_F(WindowBurns, AnotherCopyIntoAnotherImage) {
    const std::string cue = folder.file("mix.cue");
    const std::string copy = folder.file("copy.cue");
    start({song("a.mp3", 11)});
    chooseImage(cue);
    clickWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    find("Open Folder", "push button");
    find("Burn Another Copy", "push button").activate();
    fillDialogue(copy);
    find("Drive: copy.cue");
    activateWhenReady("Burn", "push button");
    waitUntil([&] { return std::filesystem::exists(copy); }, "copy");
    EXPECT_TRUE(std::filesystem::exists(cue));
}

TEST_F(WindowBurns, AnImageThatIsTheLastEntryOfTheDrives) {
    start({song("a.mp3", 11)});
    click("Drive: No drive", "push button");
    press("Down");
    press("Return");
    fillDialogue(folder.file("mix.cue"));
    find("Drive: mix.cue");
}

TEST_F(WindowBurns, NothingThatDoesNotFit) {
    machine.plug({});
    paddedSong("long.m4a", 800'000'000);
    start({"--data", "long.m4a"});
    waitUntil(
        [&] {
            return program()
                .find([](const SeenWidget& one) {
                    return one.role() == "level bar" && one.name().ends_with("too much");
                })
                .has_value();
        },
        "warning");
    find("The file takes 763 MB, and the disc takes 702.8 MB.\n"
         "Remove some files, or use a larger disc.");
    EXPECT_FALSE(find("Burn", "push button").isSensitive());
}

TEST_F(WindowBurns, KeepTheMachineAwakeAndEndWithANotification) {
    const DesktopServices desktop;
    const auto recorder = machine.plug({.delay = std::chrono::milliseconds(1)});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    waitUntil([&] { return desktop.inhibitors() == 1; }, "inhibitor");
    recorder->setDelay({});
    waitUntil([&] { return desktop.inhibitors() == 0; }, "end of the inhibitor");
    waitUntil([&] { return !desktop.notifications().empty(); }, "notification");
    EXPECT_THAT(desktop.notifications(), ElementsAre("The disc is ready"));
}

TEST_F(WindowBurns, WithANotificationThatShowsTheWindowAndGoesWithTheNextBurn) {
    DesktopServices desktop;
    const auto recorder = machine.plug({});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    waitUntil([&] { return desktop.shownNotifications() == 1; }, "notification");
    recorder->insert(Medium::blankCDR());
    recorder->hangAt(write10);
    activateWhenReady("Burn", "push button");
    waitUntil([&] { return desktop.shownNotifications() == 0; }, "end of the notification");
    recorder->resume();
    waitUntil([&] { return desktop.shownNotifications() == 1; }, "second notification");
    minimize();
    desktop.clickNotification();
    waitUntil([&] { return isOnScreen(); }, "window");
}

TEST_F(WindowBurns, SayWhatFailedAndWhatCanBeDone) {
    const DesktopServices desktop;
    const auto recorder = machine.plug({.faults = {.writeErrorAt = 100}});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    waitUntil([&] { return !desktop.notifications().empty(); }, "notification");
    EXPECT_THAT(desktop.notifications(), ElementsAre("The burn has failed"));
    EXPECT_TRUE(program().find([](const SeenWidget& one) {
        return one.role() == "label" && one.name().find("\n") != std::string::npos &&
               one.isVisible();
    })) << treeOf(program());
}

TEST_F(WindowBurns, SayThatTheFolderOfTheImageHasGone) {
    const std::string images = makeFolder("images");
    start({song("a.mp3", 11)});
    chooseImage(images + "/mix.cue");
    find("Drive: mix.cue");
    std::filesystem::remove(images);
    clickWhenReady("Burn", "push button");
    find("The folder for the image does not exist.\n" + images +
         " does not exist\nCreate the folder, or choose another one.");
}

} // namespace
} // namespace quarner::testing
