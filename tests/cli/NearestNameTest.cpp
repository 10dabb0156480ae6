// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "tools/quarner/options/NearestName.h"

namespace quarner::cli {
namespace {

TEST(NearestName, TheDistanceCountsLettersPutInLeftOutAndChanged) {
    EXPECT_EQ(editDistance("title", "title"), 0U);
    EXPECT_EQ(editDistance("titel", "title"), 2U);
    EXPECT_EQ(editDistance("tile", "title"), 1U);
    EXPECT_EQ(editDistance("tittle", "title"), 1U);
    EXPECT_EQ(editDistance("tutle", "title"), 1U);
    EXPECT_EQ(editDistance("", "abc"), 3U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(NearestName, CaseDoesNotCount) { EXPECT_EQ(editDistance("DRIVE", "drive"), 0U); }

TEST(NearestName, TheNearestOfTheNamesIsFoundAndTheFirstOfSeveral) {
    EXPECT_EQ(nearestName("drie", {"audio", "drives", "disc", "drive"}), "drive");
    EXPECT_EQ(nearestName("x", {"a", "b"}), "a");
    EXPECT_EQ(nearestName("x", {}), "");
}

} // namespace
} // namespace quarner::cli
