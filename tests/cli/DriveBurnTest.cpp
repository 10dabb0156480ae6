// SPDX-License-Identifier: LGPL-2.1-or-later
#include <filesystem>

#include "tests/cli/DriveBurnFixture.h"
#include "tools/quarner/command/BurnQuestion.h"

namespace quarner::cli {
namespace {

using DriveBurnTest = DriveBurnFixture;
TEST_F(DriveBurnTest, BurnsAfterAYes) {
    type("yes\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, BurnsARewritableDiscToo) {
    insert({.type = DRDeviceMediaTypeCDRW, .isBlank = false, .isErasable = true});
    type("y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, BurnsNothingAfterAnyOtherAnswer) {
    for (const char* const answer : {"n\n", "\n", "yesterday\n"}) {
        type(answer);
        EXPECT_EQ(burn(), 130) << answer;
    }
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, BurnsNothingWhenTheKeyboardIsGone) {
    type("y"); // no whole line
    endTyping();
    EXPECT_EQ(burn(), 130);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, CtrlCIsAnAnswerToo) {
    interruptWhen([this] { return questions() > 0; });
    EXPECT_EQ(burn(), 130);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, AsksAgainWhenAnotherDiscWasPutIn) {
    whenAsked([this] { writer->insert({.type = DRDeviceMediaTypeCDRW, .isErasable = true}); },
              "y\n", "y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_EQ(questions(), 2U);
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, AsksAgainAlsoWhenTheOtherDiscLooksTheSame) {
    whenAsked([this] { writer->insert({}); }, "y\n");
    EXPECT_EQ(burn(), 130);
    EXPECT_EQ(questions(), 2U);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, AsksAgainWhenTheDriveTellsOfNoChangeButHasAnotherDisc) {
    changeAfterAnswer([](DriveScript& script) { script.disc->blocksUsed = 1; });
    EXPECT_EQ(burn(), 130);
    EXPECT_EQ(questions(), 2U);
    changeAfterAnswer([](DriveScript& script) {
        script.disc->isBlank = false;
        script.disc->isErasable = true;
    });
    EXPECT_EQ(burn(), 130);
    EXPECT_EQ(questions(), 2U);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, ADiscThatWasTakenOutBeforeTheAnswerIsNotBurnt) {
    whenAsked([this] { writer->ejectMedia(); }, "y\n");
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, ADiscThatIsTooSmallIsNotBurntInPlaceOfTheOneThatWasShown) {
    whenAsked(
        [this] { writer->insert({.spaceFree = DRMSF::msfWithFrames(750), .blocksFree = 750}); },
        "y\n");
    EXPECT_EQ(burn(), 4);
    EXPECT_EQ(questions(), 1U);
}

TEST_F(DriveBurnTest, ADriveThatWasUnpluggedBeforeTheAnswerIsNotBurntOn) {
    whenAsked(
        [this] {
            writer->ejectMedia();
            host.platform.unplug(writer);
        },
        "y\n");
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, ADiscThatCanBeOverwrittenIsBurnt) {
    insert({.type = DRDeviceMediaTypeCDRW, .isBlank = false, .isOverwritable = true});
    EXPECT_EQ(burn({"--yes"}), 0);
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, WhereAQuestionWouldNotBeSeenNothingIsBurntWithoutAYes) {
    host.isTerminalSeen = false;
    EXPECT_EQ(burn(), 2);
    EXPECT_EQ(burns(), 0U);
    EXPECT_EQ(burn({"--dry-run"}), 0);
    EXPECT_EQ(burn({"--yes"}), 0);
}

TEST_F(DriveBurnTest, AsksOnlyOnceAndAfterEverythingElseIsRight) {
    EXPECT_EQ(burn({"/m/none.mp3"}), 3);
    EXPECT_EQ(burn({"--dry-run"}), 0);
    EXPECT_EQ(host.err(), "");
    type("y\n");
    EXPECT_EQ(burn({"/m/b.m4a"}), 0);
}

TEST_F(DriveBurnTest, AsksNobodyWhoHasSaidYesOrIsNotThere) {
    EXPECT_EQ(burn({"--yes"}), 0);
    EXPECT_EQ(host.err(), "");
    host.keyboard.reset();
    insert({});
    EXPECT_EQ(burn(), 0);
    EXPECT_EQ(host.err(), "");
}

TEST_F(DriveBurnTest, DoesNotAskForAnImage) {
    const std::string image = (std::filesystem::temp_directory_path() / "x.cue").string();
    EXPECT_EQ(burn({"--image", image}), 0);
    EXPECT_EQ(host.err(), "");
}

TEST(BurnQuestion, OnlyYesMeansYes) {
    for (const char* const answer : {"y", "Y", "yes", "YES", "y \r"})
        EXPECT_TRUE(isYes(answer)) << answer;
    for (const char* const answer : {"", "n", "no", "yes!", "yy", " y"})
        EXPECT_FALSE(isYes(answer)) << answer;
}

TEST_F(DriveBurnTest, WithoutADiscThereIsNothingToAsk) {
    writer->ejectMedia();
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(questions(), 0U);
}

TEST_F(DriveBurnTest, ADiscThatIsStillExaminedIsNotBurnt) {
    writer->change([](DriveScript& script) {
        script.disc.reset();
        script.isTransitioning = true;
    });
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(questions(), 0U);
}

TEST_F(DriveBurnTest, ADvdIsNoDiscForIt) {
    insert({.type = DRDeviceMediaTypeDVDR});
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, AWrittenDiscIsNotTooSmallButCannotBeWritten) {
    insert({.isBlank = false, .spaceFree = DRMSF::msf(), .blocksFree = 0});
    EXPECT_EQ(burn(), 1);
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, ADriveThatMayNotBeOpenedIsRefused) {
    lock("/dev/sr0 may be opened only by members of the group cdrom");
    EXPECT_EQ(burn(), 2);
    EXPECT_EQ(host.run({"disc"}), 2);
}

TEST_F(DriveBurnTest, ADriveThatMayNotBeOpenedIsListedWithTheReason) {
    lock("/dev/sr0 is not yours");
    EXPECT_EQ(host.run({"drives", "--json"}), 0);
    EXPECT_EQ(objects()[0].at("accessProblem"), "/dev/sr0 is not yours");
    EXPECT_EQ(objects()[0].at("disc"), false);
}

} // namespace
} // namespace quarner::cli
