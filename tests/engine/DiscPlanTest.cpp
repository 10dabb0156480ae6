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
}

TEST(DiscPlan, RefusesWhatIsNoDisc) {
    EXPECT_EQ(errorOf({}), DRError::EmptyLayout);
    EXPECT_EQ(errorOf(DRLayout(99, makeTrack(300, 150))), DRError());
    EXPECT_EQ(errorOf(DRLayout(100, makeTrack(300, 150))), DRError::TooManyTracks);
    EXPECT_EQ(errorOf({nullptr}), DRError::Internal);
}

} // namespace
} // namespace quarner
