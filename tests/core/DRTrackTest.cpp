// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <limits>

#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DRTrack.h"

namespace quarner::testing {
namespace {

/// A track whose estimate is made later, and how often it was.
class LaterEstimate : public ::testing::Test {
protected:
    LaterEstimate() {
        track.setEstimateLength(
            [this] {
                ++made;
                return std::uint64_t(100);
            },
            150);
    }

    DRTrack track;
    int made = 0;
};

TEST_F(LaterEstimate, IsMadeOnceWhenItIsAskedFor) {
    EXPECT_EQ(made, 0);
    EXPECT_EQ(track.estimateLength(), 100U);
    EXPECT_EQ(track.estimateLength(), 100U);
    EXPECT_EQ(made, 1);
}

TEST_F(LaterEstimate, IsNotMadeWhereTheMostThatItCanBeDecides) {
    EXPECT_TRUE(track.isEstimateBelow(151));
    EXPECT_FALSE(track.isEstimateBelow(0));
    EXPECT_EQ(made, 0);
}

TEST_F(LaterEstimate, DecidesWhereItMay) {
    EXPECT_TRUE(track.isEstimateBelow(150));
    EXPECT_TRUE(track.isEstimateBelow(101));
    EXPECT_FALSE(track.isEstimateBelow(100));
    EXPECT_EQ(made, 1);
}

TEST_F(LaterEstimate, GivesWayToOneThatIsSet) {
    track.setEstimateLength(7);
    EXPECT_EQ(track.estimateLength(), 7U);
    EXPECT_FALSE(track.isEstimateBelow(7));
    EXPECT_EQ(made, 0);
}

TEST(DRTrack, TheEstimateIsTheLengthAndThePreGapWithoutAnother) {
    DRTrack track;
    track.setLength(DRMSF::msfWithFrames(300));
    track.setPreGap(DRMSF::msfWithFrames(150));
    EXPECT_EQ(track.estimateLength(), 450U);
    EXPECT_FALSE(track.isEstimateBelow(450));
    EXPECT_TRUE(track.isEstimateBelow(451));
}

TEST(DRTrack, IsOfItsClassAlone) {
    const DRTrack track;
    EXPECT_EQ(track.className(), "DRTrack");
    EXPECT_TRUE(track.isKindOfClass("DRTrack"));
    EXPECT_FALSE(track.isKindOfClass("DRFolder"));
}

TEST(DRFolder, IsOfItsClassAlone) {
    const DRFolder folder("Disc");
    EXPECT_EQ(folder.className(), "DRFolder");
    EXPECT_TRUE(folder.isKindOfClass("DRFolder"));
    EXPECT_FALSE(folder.isKindOfClass("DRTrack"));
}

TEST(SectorsForSamples, RoundUpAndStayWithinWhatATrackMayHave) {
    EXPECT_EQ(sectorsForSamples(0), 300U) << "four seconds, the shortest track";
    EXPECT_EQ(sectorsForSamples(400 * 588), 400U);
    EXPECT_EQ(sectorsForSamples(400 * 588 + 1), 401U);
    EXPECT_EQ(sectorsForSamples(std::numeric_limits<std::uint64_t>::max()),
              std::numeric_limits<std::uint32_t>::max());
}

} // namespace
} // namespace quarner::testing
