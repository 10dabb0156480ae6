// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "adapters/engine/ProgressMeter.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;

class ProgressMeterTest : public testing::Test {
protected:
    std::chrono::steady_clock::time_point now{};
    Clock clock = [this] { return now; };
};

TEST_F(ProgressMeterTest, ReportsAtMostTenTimesASecondAndOnceAtTheEnd) {
    ProgressMeter meter(clock, 1000);
    int reports = 0;
    double last = -1.0;
    for (int i = 0; i < 1000; ++i) { // three seconds
        now += 3ms;
        meter.advance(1);
        if (const auto fraction = meter.fractionToReport()) {
            ++reports;
            EXPECT_GT(*fraction, last);
            last = *fraction;
        }
    }
    EXPECT_EQ(last, 1.0);
    EXPECT_GE(reports, 29);
    EXPECT_LE(reports, 31);
    EXPECT_EQ(meter.fractionToReport(), std::nullopt) << "the end is reported once";
}

TEST_F(ProgressMeterTest, TheEndIsReportedHoweverSoon) {
    ProgressMeter meter(clock, 2);
    meter.advance(1);
    EXPECT_EQ(meter.fractionToReport(), 0.5);
    meter.advance(1);
    EXPECT_EQ(meter.fractionToReport(), 1.0);
}

TEST_F(ProgressMeterTest, TheSpeedIsMeasuredOverAtLeastASecond) {
    ProgressMeter meter(clock, 1'000'000);
    now += 900ms;
    meter.advance(900);
    now += 200ms;
    meter.advance(2000);
    EXPECT_DOUBLE_EQ(meter.speed(), 2900 / 1.1);
}

TEST_F(ProgressMeterTest, TheSpeedIsThatOfTheLastSecond) {
    ProgressMeter meter(clock, 1'000'000);
    EXPECT_EQ(meter.speed(), 0.0);
    for (int i = 0; i < 500; ++i) {
        now += 10ms;
        meter.advance(75);
    }
    EXPECT_NEAR(meter.speed(), 7500.0, 1.0);
    for (int i = 0; i < 200; ++i) {
        now += 10ms;
        meter.advance(3);
    }
    EXPECT_NEAR(meter.speed(), 300.0, 1.0);
}

TEST_F(ProgressMeterTest, AStandstillBringsTheSpeedDown) {
    ProgressMeter meter(clock, 1000);
    now += 100ms;
    meter.advance(100);
    now += 10s;
    meter.advance(1);
    EXPECT_EQ(meter.speed(), 0.1) << "one block in ten seconds";
}

TEST_F(ProgressMeterTest, TheNextReportIsDueAfterExactlyOneInterval) {
    ProgressMeter meter(clock, 100);
    EXPECT_EQ(meter.fractionToReport(), 0.0);
    now += ProgressMeter::reportInterval - 1ms;
    meter.advance(10);
    EXPECT_EQ(meter.fractionToReport(), std::nullopt);
    now += 1ms;
    meter.advance(10);
    EXPECT_EQ(meter.fractionToReport(), 0.2);
    EXPECT_EQ(meter.fractionToReport(), std::nullopt);
}

TEST_F(ProgressMeterTest, APhaseThatGoesOnAfterItsEndWasReportedIsReportedAgain) {
    ProgressMeter meter(clock, 10);
    meter.advance(10);
    EXPECT_EQ(meter.fractionToReport(), 1.0);
    now += 1s;
    meter.advance(10);
    EXPECT_EQ(meter.fractionToReport(), 2.0);
}

TEST_F(ProgressMeterTest, TheSpeedForgetsWhatIsOlderThanTheWindow) {
    ProgressMeter meter(clock, 1000);
    for (const std::uint64_t blocks : {100U, 10U, 10U}) {
        now += ProgressMeter::speedWindow / 2;
        meter.advance(blocks);
    }
    // The window begins with the first 100 blocks, which are no longer counted.
    EXPECT_EQ(meter.speed(), 20.0);
}

TEST_F(ProgressMeterTest, AnEmptyPhaseIsCompleteAtOnce) {
    EXPECT_EQ(ProgressMeter(clock, 0).fractionToReport(), 1.0);
}

} // namespace
} // namespace quarner
