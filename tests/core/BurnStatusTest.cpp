// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <ostream>

#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

class BurnStatusTest : public BurnTest {};

TEST_F(BurnStatusTest, ProgressComesFirstThenTheLogLineThenTheState) {
    std::vector<std::size_t> linesWhenCalled;
    delegate.whenCalled = [&](const std::string&) {
        linesWhenCalled.push_back(platform.log().size());
    };
    const auto burn = start(1'000'000);
    linesWhenCalled.clear();
    say(burn,
        {.state = DRStatusStateTrackWrite, .fraction = 0.5, .speed = 1000.0, .track = 1, .of = 2});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidChanaged(0.5, 500)",
                                              "burnProgressIsWriteingTrack(1, 2)"));
    EXPECT_THAT(linesWhenCalled, ElementsAre(0U, 1U));
    EXPECT_THAT(platform.log(), ElementsAre("DRStatusStateTrackWrite -- 0.500000, "
                                            "{DRStatusCurrentSpeedKey = 1000.000000; "
                                            "DRStatusCurrentTrackKey = 1; "
                                            "DRStatusPercentCompleteKey = 0.500000; "
                                            "DRStatusStateKey = \"DRStatusStateTrackWrite\"; "
                                            "DRStatusTotalTracksKey = 2;}"));
}

TEST_F(BurnStatusTest, ARecordWithoutAStateStillReportsItsProgress) {
    EXPECT_THAT(heardOf({.fraction = 0.25, .speed = 75.0}),
                ElementsAre("burnProgressDidChanaged(0.25, 10)"));
    EXPECT_THAT(platform.log(), ::testing::Contains("currentStatus:"));
}

struct TimeLeftCase {
    const char* name;
    std::uint64_t blocks;
    std::optional<double> speed;
    double fraction;
    std::uint64_t left;

    friend void PrintTo(const TimeLeftCase& given, std::ostream* out) { *out << given.name; }
};

class TimeLeftTest : public BurnTest, public ::testing::WithParamInterface<TimeLeftCase> {};

TEST_P(TimeLeftTest, IsBlocksOverSpeedForWhatIsStillToDo) {
    const TimeLeftCase& given = GetParam();
    class Listener : public QuarnDelegate {
    public:
        void burnProgressDidChanaged(double, std::uint64_t lefttime) override { left = lefttime; }
        std::optional<std::uint64_t> left;
    } listener;
    const auto burn = start();
    burner->setDelegate(&listener);
    burner->_estimateTotalLength = given.blocks;
    say(burn, {.state = DRStatusStateTrackWrite, .fraction = given.fraction, .speed = given.speed});
    EXPECT_EQ(listener.left, given.left);
}

constexpr std::uint64_t mostTime = std::numeric_limits<std::uint64_t>::max();

INSTANTIATE_TEST_SUITE_P(
    BurnStatus, TimeLeftTest,
    ::testing::Values(TimeLeftCase{"Half", 1'000'000, 1000.0, 0.5, 500},
                      TimeLeftCase{"Truncated", 1000, 300.0, 0.5, 1},
                      TimeLeftCase{"NoSpeed", 1000, std::nullopt, 0.5, 0},
                      TimeLeftCase{"SpeedZero", 1000, 0.0, 0.5, 0},
                      TimeLeftCase{"NothingAtSpeedZero", 0, 0.0, 0.5, 0},
                      TimeLeftCase{"SpeedNotANumber", 1000, notANumber, 0.5, 0},
                      TimeLeftCase{"SpeedInfinite", 1000, infinite, 0.5, 0},
                      TimeLeftCase{"SpeedNegative", 1000, -10.0, 0.5, 0},
                      TimeLeftCase{"NoEstimate", 0, 1000.0, 0.5, 0},
                      TimeLeftCase{"Complete", 1'000'000, 1.0, 1.0, 0},
                      TimeLeftCase{"MoreThanComplete", 1'000'000, 1.0, 1.5, 0},
                      TimeLeftCase{"FractionInfinite", 1'000'000, 1.0, infinite, 0},
                      TimeLeftCase{"FractionBeyondSinglePrecision", 1'000'000, 1.0, 1e300, 0},
                      TimeLeftCase{"BeyondSixtyFourBits", 1'000'000, 1e-20, 0.5, mostTime},
                      TimeLeftCase{"JustBeyondSixtyFourBits", mostTime, 0.5, 0.5, mostTime},
                      TimeLeftCase{"JustWithinSixtyFourBits", mostTime, 1.0, 0.5,
                                   std::uint64_t(1) << 63},
                      TimeLeftCase{"SpeedTooSmallForSinglePrecision", 1000, 1e-60, 0.5, 0}));

TEST_F(BurnStatusTest, TheTimeLeftIsReckonedInSinglePrecision) {
    // In double precision this is 16777217 / 1 * 0.5 = 8388608.5, a single holds 16777216.
    EXPECT_THAT(heardOf({.state = DRStatusStateFinishing, .fraction = 0.1, .speed = 1.0}, 16777217),
                ElementsAre(::testing::StartsWith("burnProgressDidChanaged(0.1, 15099494)"),
                            "burnProgressIsFinishing"));
}

TEST_F(BurnStatusTest, TheEstimateIsNotReset) {
    say(start(1234), {.state = DRStatusStateDone});
    EXPECT_EQ(burner->_estimateTotalLength, 1234U);
}

TEST_F(BurnStatusTest, ABurnerWithoutAnEstimateAlwaysReportsNoTimeLeft) {
    // The report of a burner without an estimate.
    const auto plain = std::make_shared<OpenAudioCDBurner>();
    plain->setDelegate(&delegate);
    plain->burnStatusDidChange(
        {DRBurnStatusChangedNotification, nullptr,
         BurnRecord{.state = DRStatusStateFinishing, .fraction = 0.5, .speed = 1.0}.dictionary()});
    EXPECT_THAT(delegate.calls(),
                ElementsAre("burnProgressDidChanaged(0.5, 0)", "burnProgressIsFinishing"));
}

} // namespace
} // namespace quarner::testing
