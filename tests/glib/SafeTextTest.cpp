// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "quarner/display.h"

namespace quarner {
namespace {

TEST(SafeText, UmlautsIdeographsAndEmojiStayAsTheyAre) {
    EXPECT_EQ(safeText("Größe 音楽 🎵 \"quoted\".mp3"), "Größe 音楽 🎵 \"quoted\".mp3");
}

TEST(SafeText, EachByteThatIsNotUtf8IsReplaced) {
    EXPECT_EQ(safeText("a\xff\xc3.mp3"), "a\uFFFD\uFFFD.mp3");
    EXPECT_EQ(safeText("\xed\xa0\x80"), "\uFFFD\uFFFD\uFFFD"); // a surrogate
    EXPECT_EQ(safeText("end\xe2\x82"), "end\uFFFD\uFFFD");
    EXPECT_EQ(safeText(std::string_view("a\0b", 3)), "a\uFFFDb");
}

TEST(SafeText, NothingCanMoveTheCursorOrTurnTheWriting) {
    EXPECT_EQ(safeText("a\nb\r\t\x1b[2J\x7f"), "a\uFFFDb\uFFFD\uFFFD\uFFFD[2J\uFFFD");
    EXPECT_EQ(safeText("\u009b2J"), "\uFFFD2J");             // a control sequence in one character
    EXPECT_EQ(safeText("x\u202e3pm.exe"), "x\uFFFD3pm.exe"); // right to left
    EXPECT_EQ(safeText("a\u2028b"), "a\uFFFDb");
}

} // namespace
} // namespace quarner
