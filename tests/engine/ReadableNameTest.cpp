// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Utf8.h"

#include <gtest/gtest.h>

namespace quarner {
namespace {

/// Each of these is one character, and the least or the greatest of its kind (Unicode, table 3-7).
const char* const characters[] = {" ",
                                  "~",
                                  "\xC2\x80",
                                  "\xDF\xBF",
                                  "\xE0\xA0\x80",
                                  "\xE0\xBF\xBF",
                                  "\xE1\x80\x80",
                                  "\xEC\xBF\xBF",
                                  "\xED\x80\x80",
                                  "\xED\x9F\xBF",
                                  "\xEE\x80\x80",
                                  "\xEF\xBF\xBF",
                                  "\xF0\x90\x80\x80",
                                  "\xF0\xBF\xBF\xBF",
                                  "\xF1\x80\x80\x80",
                                  "\xF3\xBF\xBF\xBF",
                                  "\xF4\x80\x80\x80",
                                  "\xF4\x8F\xBF\xBF"};

/// None of these holds a character; the bytes next to the limits above.
const char* const invalid[] = {"\x01",
                               "\x1F",
                               "\x7F",
                               "\x80",
                               "\xBF",
                               "\xC1\xBF",
                               "\xC0\x80",
                               "\xC2",
                               "\xE0\x9F\xBF",
                               "\xED\xA0\x80",
                               "\xE1\x80",
                               "\xF0\x8F\xBF\xBF",
                               "\xF4\x90\x80\x80",
                               "\xF5\x80\x80\x80",
                               "\xF1\x80\x80",
                               "\xFF"};

TEST(ReadableName, KeepsEveryCharacter) {
    for (const char* character : characters) {
        const std::string name = "a" + std::string(character) + character + "z";
        EXPECT_EQ(readableName(name), name);
        EXPECT_EQ(readableName(character), character) << "at the end";
    }
}

TEST(ReadableName, ReplacesEveryOtherByte) {
    for (const std::string bytes : invalid) {
        std::string replaced;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            replaced += "\xEF\xBF\xBD";
        EXPECT_EQ(readableName(bytes), replaced) << testing::PrintToString(bytes);
        EXPECT_EQ(readableName("a" + bytes + "z"), "a" + replaced + "z")
            << testing::PrintToString(bytes);
    }
}

TEST(ReadableName, ASequenceThatBreaksOffReplacesOnlyWhatIsThere) {
    EXPECT_EQ(readableName("\xE2\x82z"), "\xEF\xBF\xBD\xEF\xBF\xBDz");
    EXPECT_EQ(readableName("\xF0\x9F\x98z"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDz");
    EXPECT_EQ(readableName("\xC3z"), "\xEF\xBF\xBDz");
    EXPECT_EQ(readableName(""), "");
}

} // namespace
} // namespace quarner
