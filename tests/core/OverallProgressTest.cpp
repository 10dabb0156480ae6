// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "quarner/project/OverallProgress.h"

namespace quarner::testing {
namespace {

using Phase = DiscBurnProgress::Phase;
using std::chrono::seconds;

class OverallProgressTest : public ::testing::Test {
protected:
    /// The progress `at` seconds after the start.
    DiscBurnProgress at(int time, Phase phase, double fraction = 0) {
        DiscBurnProgress progress;
        progress.phase = phase;
        progress.phaseFraction = fraction;
        overall.update(progress, start + seconds(time));
        return progress;
    }

    const OverallProgress::Clock::time_point start = OverallProgress::Clock::now();
    OverallProgress overall;
};

TEST_F(OverallProgressTest, CountsWritingAndVerifying) {
    EXPECT_EQ(at(0, Phase::Preparing).fraction, 0);
    const double begun = at(5, Phase::Writing, 0).fraction;
    const double half = at(10, Phase::Writing, 0.5).fraction;
    const double written = at(15, Phase::Writing, 1).fraction;
    const double finishing = at(16, Phase::Finishing).fraction;
    const double verifying = at(20, Phase::Verifying, 0).fraction;
    EXPECT_LT(begun, half);
    EXPECT_NEAR(half - begun, written - half, 1e-9);
    EXPECT_LE(written, finishing);
    EXPECT_LT(finishing, verifying);
    EXPECT_EQ(at(30, Phase::Verifying, 1).fraction, 1);
}

TEST_F(OverallProgressTest, NeverFalls) {
    const double first = at(1, Phase::Writing, 0.5).fraction;
    EXPECT_EQ(at(2, Phase::Writing, 0.2).fraction, first);
    EXPECT_EQ(at(3, Phase::Preparing).fraction, first);
    EXPECT_LE(at(4, Phase::Verifying, 7).fraction, 1);
}

TEST_F(OverallProgressTest, EstimatesTheTimeFromThatOfThePhase) {
    at(0, Phase::Writing, 0);
    EXPECT_FALSE(at(0, Phase::Writing, 0.5).secondsLeft) << "too early to say";
    EXPECT_FALSE(at(5, Phase::Writing, 0.001).secondsLeft);
    const auto progress = at(10, Phase::Writing, 0.25);
    EXPECT_EQ(progress.phaseSecondsLeft, 30U);
    EXPECT_EQ(progress.secondsLeft, 50U) << "verifying takes half the time of writing";
}

TEST_F(OverallProgressTest, TheTimeLeftNeverRises) {
    at(0, Phase::Writing, 0);
    EXPECT_EQ(at(10, Phase::Writing, 0.5).secondsLeft, 20U);
    EXPECT_EQ(at(30, Phase::Writing, 0.6).secondsLeft, 20U);
    EXPECT_EQ(at(40, Phase::Finishing).secondsLeft, 20U);
    at(40, Phase::Verifying, 0);
    EXPECT_EQ(at(50, Phase::Verifying, 0.9).secondsLeft, 1U);
    EXPECT_EQ(at(52, Phase::Verifying, 1).secondsLeft, 0U);
}

} // namespace
} // namespace quarner::testing
