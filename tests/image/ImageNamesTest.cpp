// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <set>
#include <vector>

#include "adapters/engine/Utf8.h"
#include "adapters/image/ImageNames.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

std::string binNameFor(const std::string& cueName) {
    const auto names = cueNames("/nowhere/" + cueName);
    return names ? CueNames::baseName(names->plainBin) : std::string("none");
}

TEST(CueNames, TheBinIsNamedAfterTheCue) {
    EXPECT_EQ(binNameFor("mix.cue"), "mix.bin");
    EXPECT_EQ(binNameFor("MIX.CUE"), "MIX.BIN");
    EXPECT_EQ(binNameFor("two words.b.cue"), "two words.b.bin");
    EXPECT_EQ(binNameFor("Grüße 日本 \xFF.cue"), "Grüße 日本 \xFF.bin");
}

TEST(CueNames, SheetsThatDifferInTheirLettersCaseAloneNameDifferentBins) {
    EXPECT_EQ(binNameFor("mix.Cue"), "mix.Bin");
    std::set<std::string> bins;
    for (const char* cue : {"cue", "cuE", "cUe", "cUE", "Cue", "CuE", "CUe", "CUE"}) {
        const auto names = cueNames("/nowhere/mix." + std::string(cue));
        ASSERT_TRUE(names);
        bins.insert(names->plainBin);
        bins.insert(names->newBin);
    }
    EXPECT_EQ(bins.size(), 16U);
}

TEST(CueNames, OnlyANameWithTheExtensionCueNamesAnImage) {
    for (const char* name : {"mix", "mix.bin", ".cue", "", "mix.cue/", "/dev/null", "mix.cues"})
        EXPECT_FALSE(cueNames(name)) << name;
}

TEST(CueNames, WhatASheetCannotExpressIsReplacedAndKeptApart) {
    const std::string quote = binNameFor("a\"b.cue");
    const std::string line = binNameFor("a\nb.cue");
    EXPECT_TRUE(quote.starts_with("a_b-")) << quote;
    EXPECT_TRUE(quote.ends_with(".bin")) << quote;
    EXPECT_TRUE(line.starts_with("a_b-")) << line;
    EXPECT_NE(quote, line);
    EXPECT_NE(quote, "a_b.bin");
}

std::vector<std::string> namesOf(const CueNames& names) {
    return {names.plainBin, names.newBin,  names.lock,       names.binPart,
            names.linkPart, names.cuePart, names.lastCuePart};
}

TEST(CueNames, NoneIsLongerThanTheFileSystemTakes) {
    const TemporaryFolder here;
    for (std::size_t length = 230; length <= 251; ++length)
        for (const char* start : {"", "\""}) {
            const std::string stem = start + std::string(length - std::strlen(start), 'x');
            const auto names = cueNames(here.file(stem + ".cue"));
            ASSERT_TRUE(names);
            for (const std::string& name : namesOf(*names))
                EXPECT_LE(CueNames::baseName(name).size(), 255U) << name;
            EXPECT_EQ(names->cue, here.file(stem + ".cue"));
            const auto data = isoNames(here.file(stem + ".iso"));
            ASSERT_TRUE(data);
            for (const std::string& name : {data->lock, data->part})
                EXPECT_LE(CueNames::baseName(name).size(), 255U) << name;
        }
    const std::string longest(251, 'x');
    EXPECT_EQ(cueNames(here.file(longest + ".cue"))->plainBin, here.file(longest + ".bin"));
}

TEST(CueNames, LongOnesThatDifferAtTheirEndAreKeptApart) {
    const std::string stem(250, 'x');
    std::set<std::string> names;
    for (const char* end : {"a", "b"}) {
        for (const std::string& name : namesOf(*cueNames("/nowhere/" + stem + end + ".cue")))
            names.insert(name);
        const auto data = isoNames("/nowhere/" + stem + end + ".iso");
        names.insert({data->lock, data->part});
    }
    EXPECT_EQ(names.size(), 2U * (7 + 2));
}

TEST(CueNames, LongOnesAreCutBetweenTwoCharacters) {
    std::string name;
    while (name.size() < 245)
        name += "音";
    for (const char* fill : {"", "y", "yy"}) {
        const std::string lock =
            CueNames::baseName(cueNames("/nowhere/" + (fill + name) + ".cue")->lock);
        EXPECT_EQ(readableName(lock), lock);
        EXPECT_NE(lock.find("音-"), std::string::npos) << lock;
    }
}

TEST(CueNames, ASymbolicLinkStandsForItsTarget) {
    const TemporaryFolder here;
    const TemporaryFolder there;
    std::filesystem::create_symlink(there.write("real.cue"), here.file("link.cue"));
    EXPECT_EQ(cueNames(here.file("link.cue"))->cue, there.file("real.cue"));
    EXPECT_EQ(cueNames(here.file("link.cue"))->plainBin, there.file("real.bin"));
}

TEST(CueNames, ASymbolicLinkStandsForItsTargetAlsoWhereNothingIsYet) {
    const TemporaryFolder here;
    const TemporaryFolder there;
    std::filesystem::create_symlink(there.file("real.cue"), here.file("link.cue"));
    std::filesystem::create_symlink("link.cue", here.file("relative.cue"));
    for (const char* link : {"link.cue", "relative.cue"}) {
        EXPECT_EQ(cueNames(here.file(link))->cue, there.file("real.cue"));
        EXPECT_EQ(cueNames(here.file(link))->folder, there.path());
        EXPECT_EQ(cueNames(here.file(link))->plainBin, there.file("real.bin"));
    }
}

TEST(CueNames, ALinkThatLeadsNowhereAtAllEndsTheSearch) {
    const TemporaryFolder here;
    std::filesystem::create_symlink(here.file("b.cue"), here.file("a.cue"));
    std::filesystem::create_symlink(here.file("a.cue"), here.file("b.cue"));
    EXPECT_EQ(cueNames(here.file("a.cue"))->folder, here.path());
}

TEST(CueNames, ARelativePathCountsFromTheWorkingDirectory) {
    EXPECT_EQ(cueNames("mix.cue")->cue, (std::filesystem::current_path() / "mix.cue").string());
}

} // namespace
} // namespace quarner
