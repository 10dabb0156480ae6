// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "quarner/quarner.h"
#include "quarner/scripted.h"
#include "tests/cli/DriveBurnFixture.h"
#include "tests/cli/WatchFixture.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/quarner/command/Commands.h"
#include "tools/quarner/command/Run.h"

// What the program says to people: all its messages, lists and summaries are pinned in this file,
// and only here. Other tests look at the exit status and at the lines of `--json`, so that a text
// can be improved without touching them. How texts are cut, aligned and made safe is tested beside
// the functions that do so.

namespace quarner::cli {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Message message(const std::vector<std::string>& arguments) {
    const auto parsed = parseCommandLine(arguments);
    const auto* const found = std::get_if<Message>(&parsed);
    EXPECT_NE(found, nullptr);
    return found == nullptr ? Message() : *found;
}

std::string usageError(const std::vector<std::string>& arguments) {
    const Message found = message(arguments);
    EXPECT_EQ(found.status, ExitStatus::Usage);
    return found.text;
}

TEST(CommandLineWording, ADataDiscNeedsATitleAndAMistypedOneIsNamed) {
    EXPECT_THAT(usageError({"data", "a.mp3"}), HasSubstr("needs a name: --title NAME"));
    EXPECT_THAT(usageError({"data", "--titel", "x", "a.mp3"}), HasSubstr("did you mean --title?"));
}

TEST(CommandLineWording, AWrongOptionNamesTheNearestRightOne) {
    EXPECT_THAT(usageError({"audio", "--titel", "x", "a.mp3"}), HasSubstr("did you mean --title?"));
    EXPECT_THAT(usageError({"audio", "--dryrun"}), HasSubstr("did you mean --dry-run?"));
    EXPECT_THAT(usageError({"audio", "--imag=x.cue", "a"}), HasSubstr("did you mean --image?"));
    EXPECT_THAT(usageError({"audio", "-image", "x.cue"}), HasSubstr("did you mean --image?"));
    EXPECT_THAT(usageError({"watch", "--jsn"}), HasSubstr("did you mean --json?"));
    EXPECT_THAT(usageError({"--verson"}), HasSubstr("did you mean --version?"));
}

TEST(CommandLineWording, AWrongCommandNamesTheNearestRightOne) {
    EXPECT_THAT(usageError({"audoi", "a.mp3"}), HasSubstr("did you mean 'quarner audio'?"));
    EXPECT_THAT(usageError({"dta", "a.mp3"}), HasSubstr("did you mean 'quarner data'?"));
    EXPECT_THAT(usageError({"drive"}), HasSubstr("did you mean 'quarner drives'?"));
}

TEST(CommandLineWording, AnOptionBeforeItsCommandIsToldItsPlace) {
    EXPECT_THAT(usageError({"--json", "drives"}), HasSubstr("quarner drives --json"));
}

TEST(CommandLineWording, WhatAUserWroteIsSafeInTheMessage) {
    EXPECT_THAT(usageError({"audio", "--a\x1b[2J"}), HasSubstr("--a\uFFFD[2J is not an option"));
}

TEST(CommandLineWording, HelpSaysWhichFilesAnImageReplaces) {
    EXPECT_THAT(message({"audio", "--help"}).text,
                HasSubstr("FILE.cue and FILE.bin; files of these names are replaced\n"));
    EXPECT_THAT(message({"data", "--help"}).text, HasSubstr("a file of this name is replaced\n"));
}

TEST(CommandLineWording, TheHelpSaysThatAnAudioDiscDoesNotShowItsTitle) {
    EXPECT_THAT(message({"audio", "--help"}).text,
                HasSubstr("neither an image nor a player shows it"));
    EXPECT_THAT(message({"data", "--help"}).text,
                testing::Not(HasSubstr("neither an image nor a player shows it")));
}

TEST(CommandLineWording, WhatDoesNotGoTogetherIsSaid) {
    EXPECT_THAT(usageError({"audio", "--image", "a.cue", "--drive", "x", "f"}),
                HasSubstr("excludes"));
    EXPECT_THAT(usageError({"audio", "--capacity", "74", "f"}), HasSubstr("requires --image"));
    EXPECT_THAT(usageError({"audio", "--image", "a.cue", "--capacity", "75", "f"}),
                HasSubstr("--capacity: '75' is neither 74 nor 80"));
    EXPECT_THAT(usageError({"audio", "--capacity", "--image", "a.cue", "f"}),
                HasSubstr("--capacity: '--image' is neither 74 nor 80"));
    EXPECT_THAT(usageError({"audio", "--image", "a.cue", "f", "--capacity"}),
                HasSubstr("--capacity: 1 required"));
    EXPECT_THAT(usageError({"audio"}), HasSubstr("no file is given"));
    EXPECT_THAT(usageError({"++"}), HasSubstr("'++' is not a command"));
    EXPECT_THAT(usageError({"eject", "--yes"}),
                HasSubstr("--yes is not an option of quarner eject"));
    EXPECT_THAT(usageError({"disc", "a.mp3"}), HasSubstr("takes no 'a.mp3'"));
    EXPECT_THAT(usageError({}), HasSubstr("no command is given"));
}

TEST(CommandLineWording, TheVersionIsANumber) {
    EXPECT_THAT(message({"--version"}).text, testing::MatchesRegex("quarner [0-9.]+"));
}

class HelpWording : public testing::TestWithParam<std::string> {};

TEST_P(HelpWording, ShowsAnExample) {
    const Message help = message({GetParam(), "--help"});
    EXPECT_EQ(help.status, ExitStatus::Success);
    EXPECT_THAT(help.text, HasSubstr("Example:\n  quarner " + GetParam()));
    EXPECT_THAT(help.text, HasSubstr("If the output cannot be written, status 0 becomes 1"));
}

INSTANTIATE_TEST_SUITE_P(OfEveryCommand, HelpWording,
                         testing::Values("audio", "data", "drives", "disc", "eject", "watch"),
                         [](const auto& suite) { return suite.param; });

TEST(ProgramWording, ItsHelpSaysWhatBecomesOfAnOutputThatCannotBeWritten) {
    EXPECT_THAT(message({"--help"}).text,
                HasSubstr("If the output cannot be written, status 0 becomes 1"));
}

TEST(ProgramWording, AnEndWithoutWaitingSaysThatADiscMayNotBeUsable) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {});
    reportForcedEnd(console, false);
    EXPECT_EQ(err.str(), "quarner: cancelled without waiting for a drive or a file that does not "
                         "respond; a disc that was being written may not be usable\n");
}

TEST(ProgramWording, AnOutputThatIsLostIsNamedWithTheCause) {
    std::ofstream out("/dev/full");
    std::ostringstream err;
    Console console(out, err, {});
    console.line("lost");
    EXPECT_EQ(statusAfterOutput(console, ExitStatus::Success), ExitStatus::Failed);
    EXPECT_EQ(err.str(), "quarner: the output could not be written: No space left on device\n");
}

TEST(FailureWording, PutsEachTextOnALineOfItsOwnAndLeavesOutThoseThatAreMissing) {
    EXPECT_EQ(explained("Writing failed.", "/m/x\n.bin", "Try again."),
              "Writing failed.\n/m/x\uFFFD.bin\nTry again.");
    EXPECT_EQ(explained("Writing failed.", "", ""), "Writing failed.");
}

/// Of a burn for which no drive and no image can be chosen.
class ChoiceWording : public testing::Test {
protected:
    std::string usageError(const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"audio", "/m/a.mp3"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(host.run(arguments), 2);
        return host.err();
    }

    const std::string folder = std::filesystem::temp_directory_path().string();
    TestHost host;
};

TEST_F(ChoiceWording, WithoutAnyDriveTheWayToAnImageIsTold) {
    EXPECT_THAT(usageError({}), AllOf(HasSubstr("there is no drive"), HasSubstr("--image")));
}

TEST_F(ChoiceWording, SeveralWritersAreListedAndOthersAreNot) {
    host.platform.addDrive({.name = "One"});
    host.platform.addDrive({.name = "Two"});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_THAT(usageError({}),
                AllOf(HasSubstr("--drive NAME:\n  One\n  Two\n"), Not(HasSubstr("Reader"))));
}

TEST_F(ChoiceWording, ReadersAloneAreListed) {
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_THAT(usageError({}), AllOf(HasSubstr("no drive can write CDs"), HasSubstr("Reader")));
    EXPECT_THAT(usageError({"--drive", "Reader"}), HasSubstr("'Reader' cannot write CDs"));
}

TEST_F(ChoiceWording, AnUnknownDriveNamesTheNearestAndListsAll) {
    host.platform.addDrive({.name = "Front drive"});
    host.platform.addDrive({.name = "Back\ndrive"});
    EXPECT_THAT(usageError({"--drive", "Frnt drive"}),
                AllOf(HasSubstr("did you mean 'Front drive'?"), HasSubstr("\n  Back\uFFFDdrive")));
}

TEST_F(ChoiceWording, AnImageOfTheOtherKindNamesItsCommand) {
    EXPECT_THAT(usageError({"--image", folder + "/cue"}), HasSubstr("must end in .cue"));
    EXPECT_THAT(usageError({"--image", "mix.iso"}),
                AllOf(HasSubstr("must end in .cue, as in mix.cue"),
                      HasSubstr("ends in .iso is made by quarner data")));
    EXPECT_EQ(host.run({"data", "--title", "T", "--image", "mix.cue", "/m/a.mp3"}), 2);
    EXPECT_THAT(host.err(), AllOf(HasSubstr("must end in .iso, as in mix.iso"),
                                  HasSubstr("ends in .cue is made by quarner audio")));
    EXPECT_EQ(host.run({"eject", "--image", folder + "/x.bin"}), 2);
    EXPECT_THAT(host.err(), HasSubstr("must end in .cue or .iso"));
}

/// Of burns of every kind of disc.
using BurnWording = EveryKindOfBurn;

TEST_P(BurnWording, ABurnThatIsDoneIsSummedUp) {
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 0);
    EXPECT_EQ(host.outLines().back(), "The disc is burnt and verified.");
    EXPECT_EQ(host.err(), "");
    EXPECT_EQ(burn({"--keep-going", "--image", image(), "/m/a.mp3", "/m/none.mp3"}), 0);
    EXPECT_EQ(host.outLines().back(), "The disc is burnt and verified.");
    EXPECT_EQ(host.err(), "quarner: \"/m/none.mp3\" does not exist. Check its name, or whether its "
                          "disk is connected.\n");
}

TEST_P(BurnWording, RefusedFilesAreNamedAndCounted) {
    EXPECT_EQ(burn({"/m/a.mp3", "/m/none.mp3"}), 3);
    EXPECT_THAT(
        linesOf(host.err()),
        ElementsAre("quarner: \"/m/none.mp3\" does not exist. Check its name, or whether its "
                    "disk is connected.",
                    "quarner: files were refused, so nothing was burnt; --keep-going "
                    "burns the rest"));
    EXPECT_EQ(burn({"--keep-going", "/m/none.wav", "/m/x.txt"}), 3);
    EXPECT_THAT(linesOf(host.err()), ElementsAre(HasSubstr("none.wav\" does not exist"),
                                                 HasSubstr("x.txt\" does not exist"),
                                                 "quarner: nothing is left to burn"));
}

TEST_P(BurnWording, APlaylistOrFolderWithoutFilesIsSaidToHaveNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(burn({folder.write("empty.m3u")}), 3);
    EXPECT_EQ(host.err(), "quarner: there is nothing to burn: no audio file was found\n");
    EXPECT_EQ(burn({"--recursive", folder.path().string()}), 3);
    EXPECT_EQ(host.err(), "quarner: there is nothing to burn: no audio file was found\n");
}

TEST_P(BurnWording, EachReasonForARefusalIsSaidWithWhatToDo) {
    const auto refusalOf = [&](const char* path) {
        EXPECT_EQ(burn({"--keep-going", "--dry-run", path}), 3);
        return linesOf(host.err()).at(0);
    };
    using Kind = MovieProblem::Kind;
    auto& platform = host.platform;
    platform.putFile("/t.txt");
    platform.putFile("/p.m4p");
    platform.putFile("/f.mp3", {.problem = FileProblem{FileProblem::Kind::NotAFile, "a folder"}});
    platform.putFile("/n.mp3");
    platform.putSong("/s.mp3", {.seconds = 0.5});
    platform.putSong("/d.mp3", {.isPlayable = false, .problem = {{Kind::Damaged, "holes"}}});
    platform.putSong("/u.mp3", {.isPlayable = false, .problem = {{Kind::Unreadable, "EIO"}}});
    EXPECT_EQ(refusalOf("/t.txt"), "quarner: \"/t.txt\" is of a type that cannot be added. Convert "
                                   "it to MP3 or M4A.");
    EXPECT_EQ(refusalOf("/p.m4p"),
              GetParam() == DiscKind::Audio
                  ? "quarner: \"/p.m4p\" is copy-protected. Add it to a data CD, or get it without "
                    "protection."
                  : "quarner: \"/p.m4p\" is of a type that cannot be added. Convert it to MP3 or "
                    "M4A.");
    EXPECT_EQ(refusalOf("/f.mp3"),
              "quarner: \"/f.mp3\" is not a file. Add the files in it instead.");
    EXPECT_EQ(refusalOf("/n.mp3"),
              "quarner: \"/n.mp3\" holds no sound that can be played. Leave it "
              "out, or replace it.");
    EXPECT_EQ(refusalOf("/s.mp3"), "quarner: \"/s.mp3\" is shorter than a second. Leave it out.");
    EXPECT_EQ(refusalOf("/d.mp3"),
              "quarner: \"/d.mp3\" is damaged (holes). Leave it out, or replace it.");
    EXPECT_EQ(refusalOf("/u.mp3"),
              "quarner: \"/u.mp3\" cannot be read (EIO). Check its permissions and its disk.");
}

TEST_P(BurnWording, ADryRunShowsTheUsage) {
    EXPECT_EQ(burn({"--dry-run", "/m/a.mp3"}), 0);
    EXPECT_THAT(host.out(), HasSubstr(GetParam() == DiscKind::Data ? "3.8 MB of 702.8 MB"
                                                                   : "00:03:22 of 01:19:57"));
    EXPECT_EQ(host.outLines().back(), "Dry run: nothing was written.");
}

TEST_P(BurnWording, AFailedBurnIsToldWithItsReasonAndWhatToDo) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::PermissionDenied});
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("quarner: The image may not be written there.\n"));
    EXPECT_THAT(host.err(), HasSubstr("Choose a folder that you may write to"));
}

TEST_P(BurnWording, TheServicesOwnTextOnAFailureIsShown) {
    failWhileBurning(DRError::NoSpace, "writing /m/x.bin: disk\nfull");
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(
        host.err(),
        HasSubstr("quarner: No space is left for the image.\nwriting /m/x.bin: disk\uFFFDfull\n"));
}

TEST_P(BurnWording, ABurnThatWasCancelledMakesADiscUseless) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; the disc is not usable\n");
}

TEST_P(BurnWording, ABurnThatWasCancelledWhileVerifyingLeavesACompleteDisc) {
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

TEST_P(BurnWording, ABurnThatWasEndedAtOnceMayHaveMadeTheDiscUseless) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { endAtOnce(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; the disc may not be usable\n");
}

TEST_P(BurnWording, ABurnThatWasCancelledLeavesNoImage) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { host.interrupt(); });
    EXPECT_EQ(burn({"--image", image(), "/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written\n");
}

TEST_P(BurnWording, ABurnThatWasEndedAtOnceMayHaveMadeItsImage) {
    host.platform.playBurns({.progressReports = 2000});
    onceWhileBurning([this] { endAtOnce(); });
    EXPECT_EQ(burn({"--image", image(), "/m/a.mp3"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written, unless the image was complete "
                          "already\n");
}

TEST_P(BurnWording, NothingWasWrittenBeforeTheBurn) {
    host.platform.onCall(ServiceCall::MovieWithFile, [this](const std::string&) { endAtOnce(); });
    EXPECT_EQ(burn({"/m/a.mp3", "/m/b.m4a"}), 130);
    EXPECT_EQ(host.err(), "quarner: cancelled; nothing was written\n");
}

TEST_P(BurnWording, AnEmptyDriveIsToldAsSuch) {
    writer->change([](DriveScript& drive) { drive.disc.reset(); });
    EXPECT_EQ(burn({"/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(),
                HasSubstr("quarner: There is no disc in the drive.\nInsert a blank CD-R or "
                          "CD-RW.\n"));
}

TEST_P(BurnWording, ADriveThatIsGoneAtOnceIsSaidToBeUnplugged) {
    host.platform.fail(ServiceCall::Devices);
    EXPECT_EQ(burn({"--image", (std::string("mix") + extensionFor(GetParam())), "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("quarner: The drive was unplugged.\n"));
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, BurnWording, testing::Values(DiscKind::Audio, DiscKind::Data),
                         kindOfBurn);

using AudioWording = BurnCommandFixture;

TEST_F(AudioWording, PlainLinesShowFilesTracksUsageStepsAndTenths) {
    EXPECT_EQ(host.run({"audio", "/m/a.mp3", "/m/b.m4a"}), 0);
    const auto lines = host.outLines();
    EXPECT_THAT(lines, Contains("Adding 1 of 2: a.mp3"));
    EXPECT_THAT(lines, Contains("Adding 2 of 2: b.m4a"));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("  2  b.m4a"), HasSubstr("00:03:20"),
                                      HasSubstr("3.8 MB"))));
    EXPECT_THAT(lines, Contains(HasSubstr("00:06:44 of 01:19:57, 01:13:13 left")));
    EXPECT_THAT(lines, Contains("Writing track 1 of 2"));
    EXPECT_THAT(lines, Contains(StartsWith("Writing track 2 of 2: 60%")));
    EXPECT_THAT(lines, Contains("Verifying"));
    EXPECT_EQ(host.out().find('\x1b'), std::string::npos);
    EXPECT_EQ(host.out().find('\r'), std::string::npos);
}

TEST_F(AudioWording, OneTrackThatDoesNotFitHasOnePause) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3"}), 4);
    EXPECT_THAT(host.err(),
                HasSubstr("quarner: The track and its pause take 01:21:42, and the disc takes "
                          "01:19:57.\nRemove some files, or use a larger disc.\n"));
}

TEST_F(AudioWording, AFullDiskIsToldWithTheRoomThatTheImageTakes) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::NoSpace});
    EXPECT_EQ(host.run({"audio", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("The image takes 34 MB: make room"));
}

TEST_F(AudioWording, ATerminalShowsOneProgressBar) {
    TestHost terminal(Screen{true, true, [] { return std::size_t{80}; }});
    terminal.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    terminal.platform.putSong("/m/a.mp3", {.seconds = 200.0});
    terminal.platform.playBurns();
    EXPECT_EQ(terminal.run({"audio", "/m/a.mp3"}), 0);
    const std::string out = terminal.out();
    EXPECT_THAT(out, HasSubstr("\rAdding 1 of 1: a.mp3\x1b[K"));
    EXPECT_THAT(out, HasSubstr("\rPreparing ["));
    EXPECT_THAT(out, HasSubstr("\rWriting [███████████████████░░░░░░░░░░░]  65%"));
    EXPECT_THAT(out, HasSubstr("\rVerifying [██████████████████████████████] 100%"));
    EXPECT_THAT(out, HasSubstr("\r\x1b[KThe disc is burnt and verified.\n"));
}

TEST_F(AudioWording, ContentThatDoesNotFitIsToldByHowMuch) {
    host.platform.putSong("/m/long.mp3", {.seconds = 4000.0});
    host.platform.putSong("/m/longer.mp3", {.seconds = 900.0});
    EXPECT_EQ(host.run({"audio", "/m/long.mp3", "/m/longer.mp3"}), 4);
    EXPECT_THAT(host.err(),
                HasSubstr("The 2 tracks and their pauses take 01:21:44, and the disc takes "
                          "01:19:57."));
    EXPECT_THAT(host.out(), HasSubstr("01:21:44 of 01:19:57, 00:01:47 too long"));
}

TEST_F(AudioWording, TooManyTracksAreCounted) {
    host.platform.putSong("/m/short.mp3", {.seconds = 5});
    std::vector<std::string> arguments(101, "/m/short.mp3");
    arguments[0] = "audio";
    EXPECT_EQ(host.run(arguments), 4);
    EXPECT_THAT(host.err(), HasSubstr("quarner: A disc holds at most 99 tracks.\n"));
}

using DataWording = BurnCommandFixture;

TEST_F(DataWording, PlainLinesShowFilesUsageInSizesAndTenths) {
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/a.mp3", "/m/b.m4a"}), 0);
    const auto lines = host.outLines();
    EXPECT_THAT(lines, Contains("Adding 1 of 2: a.mp3"));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("  2  b.m4a"), HasSubstr("00:03:20"),
                                      HasSubstr("3.8 MB"))));
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("     2 files   "), HasSubstr("  7.6 MB"),
                                      Not(HasSubstr("00:")))));
    EXPECT_THAT(lines, Contains(HasSubstr("] 7.6 MB of 702.8 MB, 695.2 MB left")));
    EXPECT_THAT(lines, Contains("Verifying"));
    EXPECT_EQ(lines.back(), "The disc is burnt and verified.");
}

TEST_F(DataWording, AFullDiskIsToldWithTheRoomThatTheImageTakes) {
    host.platform.playBurns({.failsAt = 0.4, .code = DRError::NoSpace});
    EXPECT_EQ(host.run({"data", "--title", "T", "/m/a.mp3"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("The image takes 3.8 MB: make room"));
}

TEST_F(DataWording, ContentIsToldWithTheRoomOnTheDisc) {
    const auto burn = [&](std::int64_t size, std::uint64_t blocks) {
        host.platform.putSong("/m/x.mp3", {.seconds = 200.0}, {.size = size});
        writer->change([&](DriveScript& script) { script.disc->blocksFree = blocks; });
        return host.run({"data", "--dry-run", "--title", "T", "/m/x.mp3"});
    };
    EXPECT_EQ(burn(20480, 10), 0);
    EXPECT_THAT(host.out(), HasSubstr("20 KB of 20 KB, 0 KB left"));
    EXPECT_EQ(burn(std::int64_t(3) * 1024 * 1024, 1024), 4);
    EXPECT_THAT(host.err(), HasSubstr("The file takes 3 MB, and the disc takes 2 MB."));
    EXPECT_THAT(host.out(), HasSubstr("3 MB of 2 MB, 1 MB too much"));
}

/// Of drives, with somebody at the keyboard.
using DriveWording = DriveBurnFixture;

TEST_F(DriveWording, TheQuestionShowsDriveDiscAndTitle) {
    type("yes\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_THAT(linesOf(host.err()),
                ElementsAre("Drive:   Writer", "Disc:    CD-R, blank, 01:19:57 free",
                            "Title:   Summer mix",
                            "Burn this disc? Type y to burn it, anything else to cancel."));
}

TEST_F(DriveWording, TheQuestionSaysThatARewritableDiscWillBeErased) {
    insert({.type = DRDeviceMediaTypeCDRW, .isBlank = false, .isErasable = true});
    type("y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_THAT(host.err(), HasSubstr("Its content will be erased."));
}

TEST_F(DriveWording, ASecondQuestionSaysThatTheDiscWasChanged) {
    whenAsked([this] { writer->insert({.type = DRDeviceMediaTypeCDRW, .isErasable = true}); },
              "y\n", "y\n");
    EXPECT_EQ(burn(), 0);
    EXPECT_THAT(host.err(), HasSubstr("The disc was changed.\nDrive:   Writer\n"
                                      "Disc:    CD-RW, blank, can be erased"));
}

TEST_F(DriveWording, AnyOtherAnswerCancels) {
    type("no\n");
    EXPECT_EQ(burn(), 130);
    EXPECT_THAT(host.err(), HasSubstr("cancelled; nothing was written"));
}

TEST_F(DriveWording, AQuestionThatCannotBeShownNamesTheOption) {
    host.isTerminalSeen = false;
    EXPECT_EQ(burn(), 2);
    EXPECT_THAT(host.err(), HasSubstr("--yes burns without asking"));
}

TEST_F(DriveWording, TheDiscIsTheReasonWhyNothingIsBurnt) {
    const auto reasonFor = [this](const DiscScript& disc) {
        insert(disc);
        EXPECT_EQ(burn(), 1);
        return host.err();
    };
    EXPECT_THAT(reasonFor({.type = DRDeviceMediaTypeDVDR}),
                HasSubstr("quarner: The disc is not a recordable CD."));
    EXPECT_THAT(reasonFor({.isBlank = false, .spaceFree = DRMSF::msf(), .blocksFree = 0}),
                HasSubstr("quarner: The disc cannot be written."));
    writer->ejectMedia();
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), AllOf(HasSubstr("quarner: There is no disc in the drive."),
                                  Not(HasSubstr("room for"))));
}

TEST_F(DriveWording, ADriveThatWasUnpluggedIsSaidToBe) {
    whenAsked(
        [this] {
            writer->ejectMedia();
            host.platform.unplug(writer);
        },
        "y\n");
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("quarner: The drive was unplugged."));
}

TEST_F(DriveWording, ADriveThatGotBusyMeanwhileIsSaidToBeThat) {
    whenAsked([this] { lock("/dev/sr0 is in use"); }, "y\n");
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(),
                HasSubstr("quarner: The drive \"Writer\" cannot be used (/dev/sr0 is in use)."));
}

TEST_F(DriveWording, ADiscThatIsStillExaminedIsSaidToBe) {
    writer->change([](DriveScript& script) {
        script.disc.reset();
        script.isTransitioning = true;
    });
    EXPECT_EQ(burn(), 1);
    EXPECT_THAT(host.err(), HasSubstr("quarner: The drive still examines the disc.\n"));
}

TEST_F(DriveWording, WatchSaysWhenNothingCanBeHeard) {
    host.receivesDriveEvents = false;
    interruptWhen([] { return true; });
    EXPECT_EQ(host.run({"watch"}), 130);
    EXPECT_THAT(host.err(), HasSubstr("udev"));
}

TEST_F(DriveWording, ADriveThatMayNotBeOpenedIsRefusedAndListedWithTheReason) {
    const std::string reason = "/dev/sr0 may be opened only by members of the group cdrom";
    lock(reason);
    for (const char* const command : {"audio", "disc"}) {
        EXPECT_EQ(
            host.run({command, std::string(command) == "audio" ? "/m/a.mp3" : "--drive=Writer"}),
            2);
        EXPECT_EQ(host.err(), "quarner: The drive \"Writer\" cannot be used (" + reason + ").\n");
    }
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Writer: writes CDs; " + reason));
}

TEST(DrivesWording, EachDriveIsListedWithWhatItCanDo) {
    TestHost host;
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_EQ(host.err(),
              "quarner: there is no drive; quarner audio --image FILE.cue makes an image "
              "without one\n");
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    host.platform.addDrive({.name = "Twin"});
    host.platform.addDrive({.name = "Twin", .canWriteCD = false, .disc = DiscScript{}});
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(
        host.outLines(),
        ElementsAre("Writer: writes CDs; CD-R, blank, 01:19:57 free",
                    "Reader: cannot write CDs; no disc",
                    "Twin: writes CDs; cannot be chosen, as a later drive has the same name",
                    "Twin: cannot write CDs; CD-R, blank, 01:19:57 free"));
}

TEST(DiscWording, SaysWhatElseCanBeWrittenToTheDisc) {
    TestHost host;
    const auto stateOf = [&](const DiscScript& disc) {
        const auto drive = host.platform.addDrive({.name = "Writer", .disc = disc});
        host.run({"disc"});
        host.platform.unplug(drive);
        return host.outLines().at(1);
    };
    EXPECT_EQ(stateOf({.isBlank = false}), "Disc:    CD-R, written, can be added to");
    EXPECT_EQ(stateOf({.isBlank = false, .isAppendable = false}), "Disc:    CD-R, written");
    EXPECT_EQ(stateOf({.type = DRDeviceMediaTypeDVDRW, .isOverwritable = true}),
              "Disc:    DVD-RW, blank, can be overwritten");
}

TEST(DiscWording, ShowsKindStateTimesSizesAndSpeeds) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Drive:   Writer", "Disc:    CD-R, blank", "Used:    00:00:00, 0 KB",
                            "Free:    01:19:57, 702.8 MB", "Speeds:  4x, 24x, 52x"));
}

TEST(DiscWording, ADiscThatIsBeingExaminedIsSaidToBe) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .isTransitioning = true});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Drive:   Writer", "Disc:    examining the disc"));
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Writer: writes CDs; examining the disc"));
}

TEST(DiscWording, AnEmptyDriveHasNoDisc) {
    TestHost host;
    host.platform.addDrive({.name = "Writer"});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Drive:   Writer", "Disc:    no disc"));
}

TEST(EjectWording, ADriveThatIsPulledMeanwhileIsSaidToBe) {
    TestHost host;
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.fail(ServiceCall::EjectMedia);
    host.platform.onCall(ServiceCall::EjectMedia,
                         [&](const std::string&) { host.platform.unplug(drive); });
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.err(), "quarner: The drive was unplugged.\n");
}

TEST(DiscWording, WithoutADriveThereIsNothingToShow) {
    TestHost host;
    EXPECT_EQ(host.run({"disc"}), 2);
    EXPECT_THAT(host.err(), HasSubstr("there is no drive"));
}

TEST(EjectWording, TheEndIsSaid) {
    TestHost host;
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(host.run({"eject"}), 0);
    EXPECT_EQ(host.out(), "Ejected: Writer\n");
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.err(), "quarner: There is no disc in the drive \"Writer\".\n");
    const auto setProblem = [&](const std::string& problem) {
        drive->change([&](DriveScript& script) { script.accessProblem = problem; });
    };
    setProblem("/dev/sr0 is in use");
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.err(), "quarner: The drive \"Writer\" cannot be used (/dev/sr0 is in use).\n");
    setProblem("");
    drive->insert({});
    host.platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_THAT(host.err(),
                HasSubstr("The drive \"Writer\" did not eject its disc. A program may be "
                          "using it."));
}

using WatchWording = WatchFixture;

TEST_F(WatchWording, TellsOfDrivesAndDiscsAsTheyComeAndGo) {
    host.platform.addDrive({.name = "Old"});
    std::shared_ptr<ScriptedDrive> drive;
    EXPECT_EQ(watch({}, {[&] { drive = host.platform.plug({.name = "New"}); }, [] {}, [] {},
                         [&] { drive->insert({}); }, [] {}, [] {},
                         [&] { host.platform.unplug(drive); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Old: no disc", "New: appeared", "New: CD-R, blank, 01:19:57 free",
                            "New: disappeared"));
}

TEST_F(WatchWording, SaysOfADriveThatCannotBeUsedWhy) {
    const auto drive =
        host.platform.addDrive({.name = "Writer", .accessProblem = "/dev/sr0 is in use"});
    EXPECT_EQ(watch({}, {[&] {
                             drive->change([](DriveScript& script) {
                                 script.accessProblem = "/dev/sr0 is not yours";
                             });
                         },
                         [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Writer: /dev/sr0 is in use", "Writer: /dev/sr0 is not yours"));
}

TEST_F(WatchWording, AMachineWithoutDrivesIsSaidToHaveNoneYet) {
    EXPECT_EQ(watch({}, {}), 130);
    EXPECT_THAT(host.outLines(), ElementsAre("There is no drive yet."));
}

} // namespace
} // namespace quarner::cli
