// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "tools/quarner/text/Columns.h"

namespace quarner::cli {
namespace {

TEST(Columns, WideCharactersTakeTwoColumnsAndCombiningOnesNone) {
    EXPECT_EQ(displayWidth("abc"), 3U);
    EXPECT_EQ(displayWidth("音楽"), 4U);
    EXPECT_EQ(displayWidth("🎵"), 2U);
    EXPECT_EQ(displayWidth("u\u0308"), 1U);
}

TEST(Columns, ATextIsCutBetweenCharactersAndShowsThatItWasCut) {
    EXPECT_EQ(shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(shortened("abcdefg", 6), "abc...");
    EXPECT_EQ(shortened("音楽音楽", 6), "音...");
    EXPECT_EQ(shortened("abcdef", 2), "ab");
    EXPECT_EQ(shortened("abc", 0), "");
}

TEST(Columns, AlignedTextsHaveExactlyTheWidth) {
    EXPECT_EQ(leftAligned("ab", 4), "ab  ");
    EXPECT_EQ(rightAligned("ab", 4), "  ab");
    EXPECT_EQ(leftAligned("音楽音楽", 6), "音... ");
}

} // namespace
} // namespace quarner::cli
