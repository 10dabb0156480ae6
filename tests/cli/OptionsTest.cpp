// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/quarner/options/Options.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;

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

TEST(Options, AudioTakesItsOptionsAnywhereAndKeepsTheOrderOfTheFiles) {
    const BurnOptions options =
        audio({"b.mp3", "--image", "mix.cue", "a.mp3", "--title", "My mix", "--capacity", "74",
               "--dry-run", "--keep-going", "--verbose", "c.m4a"});
    EXPECT_THAT(options.files, ElementsAre("b.mp3", "a.mp3", "c.m4a"));
    EXPECT_EQ(options.target.image, "mix.cue");
    EXPECT_EQ(options.target.capacity, 74);
    EXPECT_EQ(options.title, "My mix");
    EXPECT_TRUE(options.dryRun && options.keepGoing);
}

TEST(Options, WithoutOptionsTheDiscHas80MinutesAndNoTitle) {
    const BurnOptions options = audio({"a.mp3"});
    EXPECT_EQ(options.target.capacity, 80);
    EXPECT_EQ(options.title, std::nullopt);
    EXPECT_EQ(options.target.image, std::nullopt);
    EXPECT_FALSE(options.dryRun || options.keepGoing);
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
    EXPECT_EQ(message({"++"}).status, ExitStatus::Usage);
    EXPECT_EQ(message({"disc", "++"}).status, ExitStatus::Usage);
    EXPECT_EQ(message({"audio", "--image", "a.cue", "--capacity", "++", "f"}).status,
              ExitStatus::Usage);
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
    EXPECT_TRUE(options.dryRun && options.keepGoing);
}

TEST(Options, TheQueriesTakeADriveOrAnImage) {
    const auto parsed = parseCommandLine({"eject", "--json", "--drive", "Front drive"});
    const auto& command = std::get<Command>(parsed);
    EXPECT_TRUE(command.json);
    const auto& options = std::get<QueryOptions>(command.options);
    EXPECT_EQ(options.query, Query::Eject);
    EXPECT_EQ(options.target.drive, "Front drive");
}

TEST(Options, WhatDoesNotGoTogetherIsRefused) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"audio", "--image", "a.cue", "--drive", "x", "f"},
             {"audio", "--capacity", "74", "f"},
             {"audio", "--image", "a.cue", "--capacity", "75", "f"},
             {"audio", "--capacity", "--image", "a.cue", "f"},
             {"audio", "--image", "a.cue", "f", "--capacity"},
             {"audio"},
             {"data", "a.mp3"},
             {"audio", "--titel", "x", "a.mp3"},
             {"--json", "drives"},
             {"drive"},
             {"disc", "a.mp3"},
             {}})
        EXPECT_EQ(message(arguments).status, ExitStatus::Usage)
            << testing::PrintToString(arguments);
}

TEST(Options, AUsageErrorIsMarkedForProgramsThatAskedForJson) {
    EXPECT_TRUE(message({"audio", "--json"}).json);
    EXPECT_FALSE(message({"audio"}).json);
}

TEST(Options, YesIsForTheCommandsThatBurn) {
    EXPECT_TRUE(audio({"--yes", "a.mp3"}).yes);
    EXPECT_TRUE(data({"--yes", "--title", "T", "a.mp3"}).yes);
    EXPECT_EQ(message({"eject", "--yes"}).status, ExitStatus::Usage);
}

TEST(Options, TheLogIsShownOnRequest) {
    const auto isVerbose = [](const std::vector<std::string>& arguments) {
        return std::get<Command>(parseCommandLine(arguments)).verbose;
    };
    EXPECT_TRUE(isVerbose({"audio", "--verbose", "a.mp3"}));
    EXPECT_FALSE(isVerbose({"audio", "a.mp3"}));
}

TEST(Options, TheVersionIsTold) { EXPECT_EQ(message({"--version"}).status, ExitStatus::Success); }

} // namespace
} // namespace quarner::cli
