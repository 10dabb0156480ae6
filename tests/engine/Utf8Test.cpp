// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Utf8.h"

#include <gtest/gtest.h>

namespace quarner {
namespace {

/// What `takeCharacter` makes of a text, in order; 0xFFFD for a byte that is not UTF-8.
std::u32string taken(std::string_view text) {
    std::u32string characters;
    while (!text.empty())
        characters += takeCharacter(text).value_or(U'\uFFFD');
    return characters;
}

TEST(Utf8, EveryCharacterOfUnicodeIsTakenWhole) {
    EXPECT_EQ(taken("a\x7F\xC2\x80\xDF\xBF"), U"a\x7F\x80\x7FF");
    EXPECT_EQ(taken("\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"),
              (std::u32string{0x800, 0xD7FF, 0xE000, 0xFFFF}));
    EXPECT_EQ(taken("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), (std::u32string{0x10000, 0x10FFFF}));
}

TEST(Utf8, WhatIsNotWellFormedIsTakenByteByByte) {
    for (const std::string_view pair : {"\xC0\x80", "\xC1\xBF", "\xC2z", "\xF5\x80", "\xFF\xFE"})
        EXPECT_EQ(taken(pair).substr(0, 1), U"\uFFFD") << pair;
    EXPECT_EQ(taken("\xC2z"), U"\uFFFDz");
    for (const std::string_view triple : {"\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF"})
        EXPECT_EQ(taken(triple), U"\uFFFD\uFFFD\uFFFD") << triple;
    for (const std::string_view four : {"\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80"})
        EXPECT_EQ(taken(four), U"\uFFFD\uFFFD\uFFFD\uFFFD") << four;
}

TEST(Utf8, ATextThatEndsWithinACharacterIsTakenByteByByte) {
    EXPECT_EQ(taken("\xE9\x9F"), U"\uFFFD\uFFFD");
    EXPECT_EQ(taken("\xF0\x90\x80"), U"\uFFFD\uFFFD\uFFFD");
}

TEST(ReadableName, ReplacesWhatIsNotUtf8AndWhatIsAControlCharacter) {
    EXPECT_EQ(readableName("Größe 音\xFF.cue"), "Größe 音\uFFFD.cue");
    EXPECT_EQ(readableName("line\nbreak\x7F"), "line\uFFFD"
                                               "break\uFFFD");
    EXPECT_EQ(readableName(""), "");
}

TEST(Utf8, NoSequenceBeginsWithAByteOfAnother) {
    for (const char* text : {"\x84\x80\x80\x80", "\xFC\x80\x80\x80"}) {
        std::string_view rest = text;
        EXPECT_EQ(takeCharacter(rest), std::nullopt);
        EXPECT_EQ(rest.size(), 3U);
    }
}

} // namespace
} // namespace quarner
