// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <ostream>

#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr std::uint32_t userCanceled = 0x80020066;

class BurnStatusTest : public BurnTest {};

struct StateCase {
    const char* state;
    const char* call;

    friend void PrintTo(const StateCase& given, std::ostream* out) { *out << given.state; }
};

class StateTest : public BurnTest, public ::testing::WithParamInterface<StateCase> {};

TEST_P(StateTest, IsReportedWithItsTrackWhereItHasOne) {
    EXPECT_THAT(heardOf({.state = GetParam().state, .track = 2, .of = 5}),
                ElementsAre(GetParam().call));
    EXPECT_THAT(platform.log(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    BurnStatus, StateTest,
    ::testing::Values(StateCase{"DRStatusStatePreparing", "burnProgressIsPreparing"},
                      StateCase{"DRStatusStateTrackOpen", "burnProgressIsOpeningTrack(2, 5)"},
                      StateCase{"DRStatusStateTrackWrite", "burnProgressIsWriteingTrack(2, 5)"},
                      StateCase{"DRStatusStateTrackClose", "burnProgressDidCloseTrack(2, 5)"},
                      StateCase{"DRStatusStateSessionClose", "burnProgressDidCloseSession"},
                      StateCase{"DRStatusStateFinishing", "burnProgressIsFinishing"},
                      StateCase{"DRStatusStateVerifying", "burnProgressIsVerifying"},
                      StateCase{"DRStatusStateDone", "burnProgressDidDone"},
                      StateCase{"DRStatusStateFailed", "burnProgressDidError(Quarn, 0)"}));

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

TEST_F(BurnStatusTest, TheLineIsLoggedWithoutADelegateToo) {
    const auto burn = start();
    burner->setDelegate(nullptr);
    say(burn, {.state = DRStatusStateTrackWrite, .fraction = 0.5});
    EXPECT_EQ(platform.log().size(), 1U);
}

TEST_F(BurnStatusTest, ADoneRecordWithAFractionReportsProgressFirst) {
    EXPECT_THAT(heardOf({.state = DRStatusStateDone, .fraction = 1.0, .speed = 75.0}),
                ElementsAre("burnProgressDidChanaged(1, 0)", "burnProgressDidDone"));
}

TEST_F(BurnStatusTest, OpeningATrackAndPreparingReportNoProgress) {
    EXPECT_THAT(heardOf({.state = DRStatusStateTrackOpen, .fraction = 0.3, .track = 1, .of = 2}),
                ElementsAre("burnProgressIsOpeningTrack(1, 2)"));
    EXPECT_THAT(heardOf({.state = DRStatusStatePreparing, .fraction = 0.3}),
                ElementsAre("burnProgressIsPreparing"));
    EXPECT_THAT(platform.log(), IsEmpty());
}

TEST_F(BurnStatusTest, AFractionThatIsNotAboveZeroReportsNoProgressInAnyState) {
    const auto burn = start();
    for (const double fraction : {-1.0, 0.0, -0.0, notANumber, -infinite})
        for (const char* state :
             {DRStatusStatePreparing, DRStatusStateTrackOpen, DRStatusStateTrackWrite,
              DRStatusStateTrackClose, DRStatusStateSessionClose, DRStatusStateFinishing,
              DRStatusStateVerifying})
            say(burn, {.state = state, .fraction = fraction, .speed = 75.0});
    say(burn, {.state = DRStatusStateTrackWrite});
    Dictionary text = {{DRStatusStateKey, DRStatusStateFinishing},
                       {DRStatusPercentCompleteKey, "0.5"}};
    burn->post(text);
    finishRuns();
    EXPECT_THAT(delegate.calls(), ::testing::SizeIs(5 * 7 + 2));
    EXPECT_THAT(delegate.calls(),
                ::testing::Each(::testing::Not(::testing::HasSubstr("Chanaged"))));
    EXPECT_THAT(platform.log(), IsEmpty());
}

TEST_F(BurnStatusTest, ARecordWithoutAStateStillReportsItsProgress) {
    EXPECT_THAT(heardOf({.fraction = 0.25, .speed = 75.0}),
                ElementsAre("burnProgressDidChanaged(0.25, 10)"));
    EXPECT_THAT(platform.log(), ::testing::Contains("currentStatus:"));
}

TEST_F(BurnStatusTest, MissingTrackNumbersReadAsZero) {
    EXPECT_THAT(heardOf({.state = DRStatusStateTrackWrite}),
                ElementsAre("burnProgressIsWriteingTrack(0, 0)"));
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

TEST_F(BurnStatusTest, TheFractionIsReadInSinglePrecisionAndWidened) {
    class Listener : public QuarnDelegate {
    public:
        void burnProgressDidChanaged(double value, std::uint64_t) override { fraction = value; }
        double fraction = 0.0;
    } listener;
    const auto burn = start();
    burner->setDelegate(&listener);
    say(burn, {.state = DRStatusStateTrackWrite, .fraction = 0.1});
    EXPECT_EQ(listener.fraction, static_cast<double>(0.1F));
}

TEST_F(BurnStatusTest, TheUserCancelCodeIsACancellationAndNoError) {
    EXPECT_THAT(heardOf({.state = DRStatusStateFailed, .error = userCanceled}),
                ElementsAre("burnProgressDidCanceled"));
    EXPECT_EQ(burner->_burner, nullptr);
}

TEST_F(BurnStatusTest, AnyOtherCodeIsReadAsSignedThirtyTwoBits) {
    const auto codeOf = [&](const Value& code) {
        const auto burn = start();
        burn->post(Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                              {DRErrorStatusKey, Dictionary{{DRErrorStatusErrorKey, code}}}});
        finishRuns();
        EXPECT_EQ(delegate.errors().back().domain, "Quarn");
        return delegate.errors().back().code;
    };
    EXPECT_EQ(codeOf(0x80020067U), 0x80020067LL - 0x100000000LL);
    EXPECT_EQ(codeOf(0x80000000U), -2147483648LL);
    EXPECT_EQ(codeOf(0xFFFFFFFFU), -1);
    EXPECT_EQ(codeOf(5), 5);
    EXPECT_EQ(codeOf(-7), -7);
    EXPECT_EQ(codeOf("text"), 0);
}

TEST_F(BurnStatusTest, ACancelCodeInSignedFormIsTheSameCode) {
    const auto burn = start();
    const std::int64_t code = std::int64_t(userCanceled) - 0x100000000LL;
    burn->post(Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                          {DRErrorStatusKey, Dictionary{{DRErrorStatusErrorKey, code}}}});
    finishRuns();
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidCanceled"));
}

TEST_F(BurnStatusTest, AFailureWithoutACodeHasTheCodeOfARefusal) {
    const auto burn = start();
    burn->post(
        Dictionary{{DRStatusStateKey, DRStatusStateFailed}, {DRErrorStatusKey, Dictionary{}}});
    finishRuns();
    EXPECT_EQ(delegate.errors().back(), (BurnError{"Quarn", 0}));
    EXPECT_THAT(heardOf({.state = DRStatusStateFailed}),
                ElementsAre("burnProgressDidError(Quarn, 0)"));
}

TEST_F(BurnStatusTest, AfterDoneNothingMoreIsHeardAndTheBurnObjectIsGone) {
    const auto burn = start();
    say(burn, {.state = DRStatusStateDone});
    say(burn, {.state = DRStatusStatePreparing});
    say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidDone"));
    EXPECT_EQ(burner->_burner, nullptr);
}

TEST_F(BurnStatusTest, AfterAFailureNothingMoreIsHeardAndTheBurnObjectIsGone) {
    const auto burn = start();
    burn->post(BurnRecord{.state = DRStatusStateFailed, .error = 0x80020001});
    burn->post(BurnRecord{.state = DRStatusStateFailed, .error = 0x80020001});
    finishRuns();
    EXPECT_EQ(delegate.calls().size(), 1U);
    EXPECT_EQ(burner->_burner, nullptr);
}

TEST_F(BurnStatusTest, TheBurnObjectIsStillThereDuringTheLastCallback) {
    const auto burn = start();
    bool wasThere = false;
    delegate.whenCalled = [&](const std::string&) { wasThere = burner->_burner == burn; };
    say(burn, {.state = DRStatusStateDone});
    EXPECT_TRUE(wasThere);
}

TEST_F(BurnStatusTest, TheEstimateIsNotReset) {
    say(start(1234), {.state = DRStatusStateDone});
    EXPECT_EQ(burner->_estimateTotalLength, 1234U);
}

TEST_F(BurnStatusTest, AnUnknownStateIsLoggedAndChangesNothing) {
    const auto burn = start();
    say(burn, {.state = DRStatusStateSessionOpen});
    say(burn, {.state = "DRStatusStateErasing"});
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_THAT(platform.log(), ElementsAre("currentStatus:DRStatusStateSessionOpen",
                                            "currentStatus:DRStatusStateErasing"));
    EXPECT_EQ(burner->_burner, burn);
    say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidDone"));
}

TEST_F(BurnStatusTest, ABurnerWithoutAnEstimateAlwaysReportsNoTimeLeft) {
    // What a burner that burns without setting the estimate reports.
    const auto plain = std::make_shared<OpenAudioCDBurner>();
    plain->setDelegate(&delegate);
    plain->burnStatusDidChange(
        {DRBurnStatusChangedNotification, nullptr,
         BurnRecord{.state = DRStatusStateFinishing, .fraction = 0.5, .speed = 1.0}.dictionary()});
    EXPECT_THAT(delegate.calls(),
                ElementsAre("burnProgressDidChanaged(0.5, 0)", "burnProgressIsFinishing"));
}

TEST_F(BurnStatusTest, TheStatusArrivesOnTheThreadThatStartedTheBurn) {
    start();
    platform.lastBurn()->play();
    finishRuns();
    for (const auto& call : delegate.callsWithThreads())
        EXPECT_EQ(call.thread, std::this_thread::get_id()) << call.text;
}

TEST_F(BurnStatusTest, ACancelInEveryStateEndsWithTheCancellation) {
    const std::size_t records = [&] {
        start();
        return recordsOf({}, platform.lastBurn()->layout()).size();
    }();
    for (std::size_t heard = 0; heard + 1 < records; ++heard) {
        const auto burn = start();
        burn->play();
        for (std::size_t turn = 0; turn < 2 * heard; ++turn)
            ASSERT_TRUE(platform.runOnce());
        burner->stopBurn();
        finishRuns();
        EXPECT_EQ(delegate.calls().back(), "burnProgressDidCanceled");
        EXPECT_EQ(delegate.count("burnProgressDidDone"), 0U);
        EXPECT_EQ(delegate.count("burnProgressDidCanceled"), 1U);
        EXPECT_EQ(burner->_burner, nullptr);
    }
}

} // namespace
} // namespace quarner::testing
