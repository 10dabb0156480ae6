// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/DiscPlan.h"

namespace quarner {
namespace {

std::shared_ptr<DRTrack> makeTrack(std::uint32_t sectors, std::uint32_t preGap) {
    auto track = std::make_shared<DRTrack>();
    track->setLength(DRMSF::msfWithFrames(sectors));
    track->setPreGap(DRMSF::msfWithFrames(preGap));
    return track;
}

DRError errorOf(const DRLayout& layout) {
    try {
        planAudioDisc(layout);
    } catch (const BurnFailure& failure) {
        return failure.error();
    }
    return DRError();
}

TEST(DiscPlan, TheFirstTwoSecondsLieBeforeSectorZero) {
    const DiscPlan plan =
        planAudioDisc({makeTrack(300, 150), makeTrack(400, 150), makeTrack(500, 0)});
    EXPECT_EQ(plan.sectors(), 300U + 150 + 400 + 500);
    EXPECT_EQ(planAudioDisc({makeTrack(300, 0)}).sectors(), 300U);
    EXPECT_EQ(planAudioDisc({makeTrack(300, 149)}).sectors(), 300U);
    EXPECT_EQ(planAudioDisc({makeTrack(300, 151)}).sectors(), 301U);
}

TEST(DiscPlan, KnowsTheTrackOfASector) {
    const DiscPlan plan = planAudioDisc({makeTrack(300, 150), makeTrack(400, 150)});
    EXPECT_EQ(plan.trackAtSector(0), 1U);
    EXPECT_EQ(plan.trackAtSector(299), 1U);
    EXPECT_EQ(plan.trackAtSector(300), 2U);
    EXPECT_EQ(plan.trackAtSector(849), 2U);
    EXPECT_EQ(plan.trackAtSector(850), 2U) << "the last one, beyond the end";
    EXPECT_EQ(DiscPlan().trackAtSector(0), 0U);
}

TEST(DiscPlan, RefusesWhatIsNoDisc) {
    EXPECT_EQ(errorOf({}), DRError::EmptyLayout);
    EXPECT_EQ(errorOf(DRLayout(mostTracks, makeTrack(300, 150))), DRError());
    EXPECT_EQ(errorOf(DRLayout(mostTracks + 1, makeTrack(300, 150))), DRError::TooManyTracks);
    EXPECT_EQ(errorOf({nullptr}), DRError::Internal);
}

TEST(DiscPlan, RefusesATrackThatIsShorterThanItsSound) {
    const auto track = makeTrack(300, 150);
    track->sampleCount = 300 * DRTrack::samplesPerSector;
    EXPECT_EQ(errorOf({track}), DRError());
    ++track->sampleCount;
    EXPECT_EQ(errorOf({track}), DRError::Internal);
}

TEST(DiscPlan, KeepsTheLengthsAndPreGapsOfTheTracks) {
    const DiscPlan plan = planAudioDisc({makeTrack(300, 150), makeTrack(400, 75)});
    EXPECT_EQ(plan.sectorSize, audioSectorSize);
    ASSERT_EQ(plan.tracks.size(), 2U);
    EXPECT_EQ(plan.tracks[0].preGap, 0U);
    EXPECT_EQ(plan.tracks[0].length, 300U);
    EXPECT_EQ(plan.tracks[1].preGap, 75U);
    EXPECT_EQ(plan.tracks[1].length, 400U);
}

} // namespace
} // namespace quarner
