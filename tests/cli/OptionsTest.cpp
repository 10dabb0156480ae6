// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/quarner/options/Options.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

BurnOptions audio(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "audio");
    const auto parsed = parseCommandLine(arguments);
    const auto* const command = std::get_if<Command>(&parsed);
    EXPECT_NE(command, nullptr) << std::get<Message>(parsed).text;
    return command == nullptr ? BurnOptions() : std::get<BurnOptions>(command->options);
}

BurnOptions data(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "data");
    const auto parsed = parseCommandLine(arguments);
    return std::get<BurnOptions>(std::get<Command>(parsed).options);
}

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

TEST(Options, AudioTakesItsOptionsAnywhereAndKeepsTheOrderOfTheFiles) {
    const BurnOptions options =
        audio({"b.mp3", "--image", "mix.cue", "a.mp3", "--title", "My mix", "--capacity", "74",
               "--dry-run", "--keep-going", "--verbose", "c.m4a"});
    EXPECT_THAT(options.files, ElementsAre("b.mp3", "a.mp3", "c.m4a"));
    EXPECT_EQ(options.target.image, "mix.cue");
    EXPECT_EQ(options.target.capacity, 74);
    EXPECT_EQ(options.title, "My mix");
    EXPECT_TRUE(options.dryRun && options.keepGoing && options.verbose);
}

TEST(Options, WithoutOptionsTheDiscHas80MinutesAndNoTitle) {
    const BurnOptions options = audio({"a.mp3"});
    EXPECT_EQ(options.target.capacity, 80);
    EXPECT_EQ(options.title, std::nullopt);
    EXPECT_EQ(options.target.image, std::nullopt);
    EXPECT_FALSE(options.dryRun || options.keepGoing || options.verbose);
}

TEST(Options, FileNamesComeThroughByteForByte) {
    EXPECT_THAT(audio({"[x]", "", "\"q\"", "a,b", "\xff.mp3", "{}", "--", "--title", "-"}).files,
                ElementsAre("[x]", "", "\"q\"", "a,b", "\xff.mp3", "{}", "--title", "-"));
}

TEST(Options, ADoublePlusIsAWordLikeAnyOther) {
    EXPECT_THAT(audio({"one.mp3", "++", "two.mp3", "++", "--", "++"}).files,
                ElementsAre("one.mp3", "++", "two.mp3", "++", "++"));
    EXPECT_THAT(audio({"++"}).files, ElementsAre("++"));
    EXPECT_EQ(audio({"--title", "++", "a.mp3"}).title, "++");
    EXPECT_EQ(audio({"--image", "++", "a.mp3"}).target.image, "++");
    EXPECT_EQ(audio({"--drive", "++", "a.mp3"}).target.drive, "++");
    EXPECT_THAT(usageError({"++"}), HasSubstr("'++' is not a command"));
    EXPECT_THAT(usageError({"disc", "++"}), HasSubstr("takes no '++'"));
    EXPECT_THAT(usageError({"audio", "--image", "a.cue", "--capacity", "++", "f"}),
                HasSubstr("'++' is neither 74 nor 80"));
}

TEST(Options, AnEmptyTitleIsATitle) {
    EXPECT_EQ(audio({"--title", "", "a.mp3"}).title, "");
    EXPECT_EQ(data({"--title", "", "a.mp3"}).title, "");
}

TEST(Options, DataTakesTheOptionsOfAudio) {
    const BurnOptions options =
        data({"b.mp3", "--image", "mix.iso", "--title", "My mix", "--capacity", "74", "--dry-run",
              "--keep-going", "--verbose", "a.mp3", "--", "-c.m4a"});
    EXPECT_EQ(options.kind, DiscKind::Data);
    EXPECT_EQ(audio({"a.mp3"}).kind, DiscKind::Audio);
    EXPECT_THAT(options.files, ElementsAre("b.mp3", "a.mp3", "-c.m4a"));
    EXPECT_EQ(options.target.image, "mix.iso");
    EXPECT_EQ(options.target.capacity, 74);
    EXPECT_EQ(options.title, "My mix");
    EXPECT_TRUE(options.dryRun && options.keepGoing && options.verbose);
}

TEST(Options, ADataDiscNeedsATitleAndAMistypedOneIsNamed) {
    EXPECT_THAT(usageError({"data", "a.mp3"}), HasSubstr("needs a name: --title NAME"));
    EXPECT_THAT(usageError({"data", "--titel", "x", "a.mp3"}), HasSubstr("did you mean --title?"));
}

TEST(Options, TheQueriesTakeADriveOrAnImage) {
    const auto parsed = parseCommandLine({"eject", "--json", "--drive", "Front drive"});
    const auto& command = std::get<Command>(parsed);
    EXPECT_TRUE(command.json);
    const auto& options = std::get<QueryOptions>(command.options);
    EXPECT_EQ(options.query, Query::Eject);
    EXPECT_EQ(options.target.drive, "Front drive");
}

TEST(Options, AWrongOptionNamesTheNearestRightOne) {
    EXPECT_THAT(usageError({"audio", "--titel", "x", "a.mp3"}), HasSubstr("did you mean --title?"));
    EXPECT_THAT(usageError({"audio", "--dryrun"}), HasSubstr("did you mean --dry-run?"));
    EXPECT_THAT(usageError({"audio", "--imag=x.cue", "a"}), HasSubstr("did you mean --image?"));
    EXPECT_THAT(usageError({"audio", "-image", "x.cue"}), HasSubstr("did you mean --image?"));
    EXPECT_THAT(usageError({"watch", "--jsn"}), HasSubstr("did you mean --json?"));
    EXPECT_THAT(usageError({"--verson"}), HasSubstr("did you mean --version?"));
}

TEST(Options, AWrongCommandNamesTheNearestRightOne) {
    EXPECT_THAT(usageError({"audoi", "a.mp3"}), HasSubstr("did you mean 'quarner audio'?"));
    EXPECT_THAT(usageError({"dta", "a.mp3"}), HasSubstr("did you mean 'quarner data'?"));
    EXPECT_THAT(usageError({"drive"}), HasSubstr("did you mean 'quarner drives'?"));
}

TEST(Options, AnOptionBeforeItsCommandIsToldItsPlace) {
    EXPECT_THAT(usageError({"--json", "drives"}), HasSubstr("quarner drives --json"));
}

TEST(Options, WhatDoesNotGoTogetherIsRefused) {
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
    EXPECT_THAT(usageError({"disc", "a.mp3"}), HasSubstr("takes no 'a.mp3'"));
    EXPECT_THAT(usageError({}), HasSubstr("no command is given"));
}

TEST(Options, AUsageErrorIsMarkedForProgramsThatAskedForJson) {
    EXPECT_TRUE(message({"audio", "--json"}).json);
    EXPECT_FALSE(message({"audio"}).json);
}

TEST(Options, WhatAUserWroteIsSafeInTheMessage) {
    EXPECT_THAT(usageError({"audio", "--a\x1b[2J"}), HasSubstr("--a\uFFFD[2J is not an option"));
}

class Help : public testing::TestWithParam<std::string> {};

TEST_P(Help, ShowsAnExample) {
    const Message help = message({GetParam(), "--help"});
    EXPECT_EQ(help.status, ExitStatus::Success);
    EXPECT_THAT(help.text, HasSubstr("Example:\n  quarner " + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(OfEveryCommand, Help,
                         testing::Values("audio", "data", "drives", "disc", "eject", "watch"),
                         [](const auto& suite) { return suite.param; });

TEST(Options, HelpSaysWhichFilesAnImageReplaces) {
    EXPECT_THAT(message({"audio", "--help"}).text,
                HasSubstr("FILE.cue and FILE.bin; files of these names are replaced\n"));
    EXPECT_THAT(message({"data", "--help"}).text, HasSubstr("a file of this name is replaced\n"));
}

TEST(Options, TheHelpSaysThatAnAudioDiscDoesNotShowItsTitle) {
    EXPECT_THAT(message({"audio", "--help"}).text,
                HasSubstr("neither an image nor a player shows it"));
    EXPECT_THAT(message({"data", "--help"}).text,
                testing::Not(HasSubstr("neither an image nor a player shows it")));
}

TEST(Options, YesIsForTheCommandsThatBurn) {
    EXPECT_THAT(message({"audio", "--help"}).text, HasSubstr("--yes"));
    EXPECT_THAT(usageError({"eject", "--yes"}),
                HasSubstr("--yes is not an option of quarner eject"));
}

TEST(Options, TheVersionIsTold) {
    EXPECT_EQ(message({"--version"}).status, ExitStatus::Success);
    EXPECT_THAT(message({"--version"}).text, testing::MatchesRegex("quarner [0-9.]+"));
}

} // namespace
} // namespace quarner::cli
