// SPDX-License-Identifier: LGPL-2.1-or-later
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "tests/cli/BurnCommandFixture.h"
#include "tools/quarner/command/BurnQuestion.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Burns to a drive, with somebody at the keyboard.
class DriveBurnTest : public BurnCommandFixture {
protected:
    DriveBurnTest() {
        if (pipe(_ends.data()) == 0)
            host.keyboard = _ends[0];
    }
    ~DriveBurnTest() override {
        close(_ends[0]);
        endTyping();
    }

    void type(const std::string& text) {
        EXPECT_EQ(write(_ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void endTyping() {
        if (_ends[1] >= 0)
            close(std::exchange(_ends[1], -1));
    }

    int burn(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"audio", "--title", "Summer mix", "/m/a.mp3"});
        return host.run(arguments);
    }

    /// A disc in the only drive.
    void insert(const DiscScript& disc) {
        writer->ejectMedia();
        writer->insert(disc);
    }

    std::size_t burns() { return host.platform.burns().size(); }

    std::size_t questions() const {
        const std::vector<std::string> lines = linesOf(host.err());
        return static_cast<std::size_t>(
            std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
                return line.starts_with("Burn this disc?");
            }));
    }

    /// Does something once when the question was shown, and types one answer to it and another one
    /// when it is shown again.
    void whenAsked(std::function<void()> action, const std::string& answer,
                   const std::string& secondAnswer = "n\n") {
        host.atEachTurn = [=, this, asked = std::size_t{0}]() mutable {
            if (questions() == asked)
                return;
            if (++asked == 1)
                action();
            type(asked == 1 ? answer : secondAnswer);
        };
    }

    /// Changes the disc, once, in the moment in which the drive is asked for it after the answer.
    void changeAfterAnswer(std::function<void(DriveScript&)> change) {
        type("y\n");
        host.platform.onCall(ServiceCall::DriveStatus, [=, this, calls = 0](const auto&) mutable {
            if (questions() == 1 && ++calls == 1) {
                writer->change(change);
                type("n\n");
            }
        });
    }

    /// Presses Ctrl-C, once, when a condition holds.
    void interruptWhen(std::function<bool()> condition) {
        host.atEachTurn = [this, condition = std::move(condition), isDone = false]() mutable {
            if (condition() && !std::exchange(isDone, true))
                host.interrupt();
        };
    }

private:
    std::array<int, 2> _ends = {-1, -1};
};

TEST_F(DriveBurnTest, ShowsDriveDiscAndTitleAndBurnsAfterAYes) {
    type("yes\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre("Drive:   Writer", "Disc:    CD-R, blank, 01:19:57 free",
                            "Title:   Summer mix",
                            "Burn this disc? Type y to burn it, anything else to cancel."));
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, SaysThatARewritableDiscWillBeErased) {
    insert({.type = DRDeviceMediaTypeCDRW, .isBlank = false, .isErasable = true});
    type("y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_THAT(host.err(), HasSubstr("Its content will be erased."));
}

TEST_F(DriveBurnTest, BurnsNothingAfterAnyOtherAnswer) {
    for (const char* const answer : {"n\n", "\n", "yesterday\n"}) {
        type(answer);
        EXPECT_EQ(burn(), 130) << answer;
        EXPECT_THAT(host.err(), HasSubstr("cancelled; nothing was written"));
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
    interruptWhen([this] { return host.err().find("Burn this disc?") != std::string::npos; });
    EXPECT_EQ(burn(), 130);
    EXPECT_THAT(host.err(), HasSubstr("cancelled; nothing was written"));
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, AsksAgainWhenAnotherDiscWasPutIn) {
    whenAsked([this] { writer->insert({.type = DRDeviceMediaTypeCDRW, .isErasable = true}); },
              "y\n", "y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_EQ(questions(), 2U);
    EXPECT_THAT(host.err(), HasSubstr("The disc was changed.\nDrive:   Writer\n"
                                      "Disc:    CD-RW, blank, can be erased"));
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
    EXPECT_THAT(host.err(), HasSubstr("nothing was burnt: there is no disc in the drive"));
}

TEST_F(DriveBurnTest, ADiscThatIsTooSmallIsNotBurntInPlaceOfTheOneThatWasShown) {
    whenAsked([this] { writer->insert({.spaceFree = DRMSF::msfWithFrames(750)}); }, "y\n");
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
    EXPECT_THAT(host.err(), HasSubstr("nothing was burnt: the drive was unplugged"));
}

TEST_F(DriveBurnTest, ADriveThatGotBusyMeanwhileIsSaidToBeThat) {
    host.atEachTurn = [this] {
        writer->ejectMedia(); // a busy drive seems to have no disc
        host.accessProblems["Writer"] = "/dev/sr0 is in use";
    };
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("nothing was burnt: the drive 'Writer' cannot be used: "
                                      "/dev/sr0 is in use"));
}

TEST_F(DriveBurnTest, ADiscThatCanBeOverwrittenIsBurnt) {
    insert({.type = DRDeviceMediaTypeCDRW, .isBlank = false, .isOverwritable = true});
    EXPECT_EQ(burn({"--yes"}), 0);
    EXPECT_EQ(burns(), 1U);
}

TEST_F(DriveBurnTest, WhereAQuestionWouldNotBeSeenNothingIsBurntWithoutAYes) {
    host.isTerminalSeen = false;
    EXPECT_EQ(burn(), 2);
    EXPECT_THAT(host.err(), HasSubstr("--yes burns without asking"));
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
    EXPECT_THAT(host.err(), HasSubstr("nothing was burnt: there is no disc in the drive"));
    EXPECT_THAT(host.err(), Not(HasSubstr("room for")));
}

TEST_F(DriveBurnTest, ADiscThatIsStillExaminedIsSaidToBe) {
    writer->change([](DriveScript& script) {
        script.disc.reset();
        script.isTransitioning = true;
    });
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("nothing was burnt: the drive still examines the disc.\n"));
}

TEST_F(DriveBurnTest, ADvdIsNoDiscForIt) {
    insert({.type = DRDeviceMediaTypeDVDR});
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("the disc is not a recordable CD"));
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, AWrittenDiscIsSaidToBeThatAndNotTooSmall) {
    insert({.isBlank = false, .spaceFree = DRMSF::msf(), .blocksFree = 0});
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("the disc cannot be written"));
    EXPECT_EQ(burns(), 0U);
}

TEST_F(DriveBurnTest, ADriveThatMayNotBeOpenedIsRefusedWithTheReason) {
    host.accessProblems["Writer"] = "/dev/sr0 may be opened only by members of the group cdrom";
    EXPECT_EQ(burn(), 2);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre("quarner: the drive 'Writer' cannot be used: /dev/sr0 may be opened "
                            "only by members of the group cdrom"));
    EXPECT_EQ(host.run({"disc"}), 2);
    EXPECT_THAT(host.err(), HasSubstr("the group cdrom"));
}

TEST_F(DriveBurnTest, ADriveThatMayNotBeOpenedIsListedWithTheReason) {
    host.accessProblems["Writer"] = "/dev/sr0 is not yours";
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Writer: writes CDs; /dev/sr0 is not yours"));
    EXPECT_EQ(host.run({"drives", "--json"}), 0);
    EXPECT_EQ(objects()[0].at("accessProblem"), "/dev/sr0 is not yours");
    EXPECT_EQ(objects()[0].at("disc"), false);
}

TEST_F(DriveBurnTest, WatchSaysWhenNothingCanBeHeard) {
    host.receivesDriveEvents = false;
    interruptWhen([] { return true; });
    EXPECT_EQ(host.run({"watch"}), 130);
    EXPECT_THAT(host.err(), HasSubstr("udev"));
}

} // namespace
} // namespace quarner::cli
