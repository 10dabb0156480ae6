// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/WindowFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;

/// What else can happen between the click on "Burn" and the end of the burn.
class WindowStartsABurn : public WindowTest {
protected:
    static Medium writtenCDRW(std::uint32_t length) {
        Medium written = Medium::audioCD({length});
        written.kind = Medium::Kind::CDRW;
        return written;
    }
    /// Until it does not hang any more, the drive has not been examined.
    std::shared_ptr<EmulatedRecorder> plugHangingDrive() {
        const auto recorder = machine.plug({});
        recorder->hang();
        return recorder;
    }
    void burnImage(const std::string& cue) const {
        chooseImage(cue);
        clickWhenReady("Burn", "push button");
        find("The disc is burnt and verified.");
    }
    bool says(const std::string& part) const {
        return program()
            .find([&](const SeenWidget& one) {
                return one.role() == "label" && one.name().find(part) != std::string::npos &&
                       one.isVisible();
            })
            .has_value();
    }
};

TEST_F(WindowStartsABurn, OfTheListThatIsShownWhenItsUserIsAsked) {
    const auto recorder = machine.plug({.medium = writtenCDRW(1000)});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    find("Erase the disc?");
    EXPECT_EQ(run({"--data", song("b.mp3")}).status, 0);
    find("No files can be added while a disc is being burnt.");
    find("Erase and Burn", "push button").activate();
    find("The disc is burnt and verified.");
    EXPECT_THAT(rows(), ElementsAre("a.mp3"));
    const Medium disc = recorder->writtenDisc().value();
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_TRUE(disc.tracks[0].isAudio);
}

TEST_F(WindowStartsABurn, AndOffersNothingMoreForItOnceTheKindOfDiscIsChanged) {
    start({song("a.mp3", 11)});
    burnImage(folder.file("mix.cue"));
    find("Open Folder", "push button");
    click("Data CD", "push button");
    waitUntil([&] { return row("a.mp3").place().y < find("Open Folder", "push button").place().y; },
              "list in the place of the offers");
}

TEST_F(WindowStartsABurn, OnTheImageWhoseDialogueIsConfirmedTooLateForAnother) {
    const std::string cue = folder.file("mix.cue");
    const std::string copy = folder.file("copy.cue");
    start({song("a.mp3", 11)}, gated());
    chooseImage(cue);
    find("Drive: mix.cue");
    openImageDialogue();
    EXPECT_TRUE(find("Burn to an Image").isModal());
    find("Burn", "push button").activate();
    waitUntil([&] { return !isThere("Burn", "push button"); }, "burn");
    fillDialogue(copy);
    std::filesystem::remove(gate);
    find("The disc is burnt and verified.");
    EXPECT_TRUE(std::filesystem::exists(cue));
    find("Drive: mix.cue");
}

TEST_F(WindowStartsABurn, WithoutAQuestionAboutABlankDiscThatIsStillBeingExamined) {
    const auto recorder = plugHangingDrive();
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    find("Cancel", "push button");
    EXPECT_FALSE(isThere("Erase the disc?"));
    recorder->resume();
    find("The disc is burnt and verified.");
}

TEST_F(WindowStartsABurn, UnlessItIsCancelledWhileTheDiscIsExamined) {
    const auto recorder = plugHangingDrive();
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    activateWhenReady("Cancel", "push button");
    find("Burn", "push button");
    recorder->resume();
    waitUntil([&] { return says("CD-R, blank"); }, "examined disc");
    EXPECT_TRUE(isThere("Burn", "push button"));
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Blank);
}

TEST_F(WindowStartsABurn, ThatTheSecondClickOfADoubleClickDoesNotCancel) {
    start({song("a.mp3", 11)}, gated());
    chooseImage(folder.file("mix.cue"));
    waitUntil([&] { return find("Burn", "push button").isSensitive(); }, "image");
    doubleClick(find("Burn", "push button"));
    find("Cancel", "push button");
    std::filesystem::remove(gate);
    find("The disc is burnt and verified.");
}

TEST_F(WindowStartsABurn, OnADiscThatReplacedAnotherOnlyAfterAnotherQuestion) {
    const auto recorder = machine.plug({.medium = writtenCDRW(1000)});
    start({song("a.mp3", 11)});
    clickWhenReady("Burn", "push button");
    find("Erase the disc?");
    const std::size_t examinations = recorder->commands().size();
    recorder->insert(writtenCDRW(30'000));
    waitUntil([&] { return recorder->commands().size() > examinations; }, "examination");
    find("Erase and Burn", "push button").activate();
    find("The disc may have been replaced. Erase this one?");
    EXPECT_EQ(recorder->writtenDisc()->tracks[0].length, 30'000);
    find("Erase and Burn", "push button").activate();
    find("The disc is burnt and verified.");
}

TEST_F(WindowStartsABurn, OfAnotherCopyToAnotherImageWhateverDriveIsChosenByThen) {
    const auto recorder = machine.plug({});
    start({song("a.mp3", 11)});
    burnImage(folder.file("mix.cue"));
    click("Drive: mix.cue", "push button");
    press("Up");
    press("Return");
    find("Drive: QUARNER DISC RECORDER");
    find("Burn Another Copy", "push button").activate();
    fillDialogue(folder.file("copy.cue"));
    find("Drive: copy.cue");
    EXPECT_FALSE(recorder->isTrayOpen());
}

} // namespace
} // namespace quarner::testing
