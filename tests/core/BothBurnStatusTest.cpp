// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>

#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr std::uint32_t userCanceled = 0x80020066;

template <typename Burner>
class BothBurnStatus : public BothBurnTest<Burner> {};

TYPED_TEST_SUITE(BothBurnStatus, Burners, BurnerNames);

struct StateCase {
    const char* state;
    const char* call;
};

constexpr StateCase stateCases[] = {
    {"DRStatusStatePreparing", "burnProgressIsPreparing"},
    {"DRStatusStateTrackOpen", "burnProgressIsOpeningTrack(2, 5)"},
    {"DRStatusStateTrackWrite", "burnProgressIsWriteingTrack(2, 5)"},
    {"DRStatusStateTrackClose", "burnProgressDidCloseTrack(2, 5)"},
    {"DRStatusStateSessionClose", "burnProgressDidCloseSession"},
    {"DRStatusStateFinishing", "burnProgressIsFinishing"},
    {"DRStatusStateVerifying", "burnProgressIsVerifying"},
    {"DRStatusStateDone", "burnProgressDidDone"},
    {"DRStatusStateFailed", "burnProgressDidError(Quarn, 0)"},
};

TYPED_TEST(BothBurnStatus, EachStateIsReportedWithItsTrackWhereItHasOne) {
    for (const StateCase& given : stateCases)
        EXPECT_THAT(this->heardOf({.state = given.state, .track = 2, .of = 5}),
                    ElementsAre(given.call));
    EXPECT_THAT(this->platform.log(), IsEmpty());
}

TYPED_TEST(BothBurnStatus, TheLineIsLoggedWithoutADelegateToo) {
    const auto burn = this->start();
    this->burner->setDelegate(nullptr);
    this->say(burn, {.state = DRStatusStateTrackWrite, .fraction = 0.5});
    EXPECT_EQ(this->platform.log().size(), 1U);
}

TYPED_TEST(BothBurnStatus, ADoneRecordWithAFractionReportsProgressFirst) {
    EXPECT_THAT(this->heardOf({.state = DRStatusStateDone, .fraction = 1.0, .speed = 75.0}),
                ElementsAre("burnProgressDidChanaged(1, 0)", "burnProgressDidDone"));
}

TYPED_TEST(BothBurnStatus, OpeningATrackAndPreparingReportNoProgress) {
    EXPECT_THAT(
        this->heardOf({.state = DRStatusStateTrackOpen, .fraction = 0.3, .track = 1, .of = 2}),
        ElementsAre("burnProgressIsOpeningTrack(1, 2)"));
    EXPECT_THAT(this->heardOf({.state = DRStatusStatePreparing, .fraction = 0.3}),
                ElementsAre("burnProgressIsPreparing"));
    EXPECT_THAT(this->platform.log(), IsEmpty());
}

TYPED_TEST(BothBurnStatus, AFractionThatIsNotAboveZeroReportsNoProgressInAnyState) {
    const auto burn = this->start();
    for (const double fraction : {-1.0, 0.0, -0.0, notANumber, -infinite})
        for (const char* state :
             {DRStatusStatePreparing, DRStatusStateTrackOpen, DRStatusStateTrackWrite,
              DRStatusStateTrackClose, DRStatusStateSessionClose, DRStatusStateFinishing,
              DRStatusStateVerifying})
            this->say(burn, {.state = state, .fraction = fraction, .speed = 75.0});
    this->say(burn, {.state = DRStatusStateTrackWrite});
    Dictionary text = {{DRStatusStateKey, DRStatusStateFinishing},
                       {DRStatusPercentCompleteKey, "0.5"}};
    burn->post(text);
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(), ::testing::SizeIs(5 * 7 + 2));
    EXPECT_THAT(this->delegate.calls(),
                ::testing::Each(::testing::Not(::testing::HasSubstr("Chanaged"))));
    EXPECT_THAT(this->platform.log(), IsEmpty());
}

TYPED_TEST(BothBurnStatus, MissingTrackNumbersReadAsZero) {
    EXPECT_THAT(this->heardOf({.state = DRStatusStateTrackWrite}),
                ElementsAre("burnProgressIsWriteingTrack(0, 0)"));
}

TYPED_TEST(BothBurnStatus, TheFractionIsReadInSinglePrecisionAndWidened) {
    class Listener : public QuarnDelegate {
    public:
        void burnProgressDidChanaged(double value, std::uint64_t) override { fraction = value; }
        double fraction = 0.0;
    } listener;
    const auto burn = this->start();
    this->burner->setDelegate(&listener);
    this->say(burn, {.state = DRStatusStateTrackWrite, .fraction = 0.1});
    EXPECT_EQ(listener.fraction, static_cast<double>(0.1F));
}

TYPED_TEST(BothBurnStatus, TheUserCancelCodeIsACancellationAndNoError) {
    EXPECT_THAT(this->heardOf({.state = DRStatusStateFailed, .error = userCanceled}),
                ElementsAre("burnProgressDidCanceled"));
    EXPECT_EQ(this->burner->_burner, nullptr);
}

TYPED_TEST(BothBurnStatus, AnyOtherCodeIsReadAsSignedThirtyTwoBits) {
    const auto codeOf = [&](const Value& code) {
        const auto burn = this->start();
        burn->post(Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                              {DRErrorStatusKey, Dictionary{{DRErrorStatusErrorKey, code}}}});
        this->finishRuns();
        EXPECT_EQ(this->delegate.errors().back().domain, "Quarn");
        return this->delegate.errors().back().code;
    };
    EXPECT_EQ(codeOf(0x80020067U), 0x80020067LL - 0x100000000LL);
    EXPECT_EQ(codeOf(0x80000000U), -2147483648LL);
    EXPECT_EQ(codeOf(0xFFFFFFFFU), -1);
    EXPECT_EQ(codeOf(5), 5);
    EXPECT_EQ(codeOf(-7), -7);
    EXPECT_EQ(codeOf("text"), 0);
}

TYPED_TEST(BothBurnStatus, ACancelCodeInSignedFormIsTheSameCode) {
    const auto burn = this->start();
    const std::int64_t code = std::int64_t(userCanceled) - 0x100000000LL;
    burn->post(Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                          {DRErrorStatusKey, Dictionary{{DRErrorStatusErrorKey, code}}}});
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnProgressDidCanceled"));
}

TYPED_TEST(BothBurnStatus, AFailureWithoutACodeHasTheCodeOfARefusal) {
    const auto burn = this->start();
    burn->post(
        Dictionary{{DRStatusStateKey, DRStatusStateFailed}, {DRErrorStatusKey, Dictionary{}}});
    this->finishRuns();
    EXPECT_EQ(this->delegate.errors().back(), (BurnError{"Quarn", 0, {}}));
    EXPECT_THAT(this->heardOf({.state = DRStatusStateFailed}),
                ElementsAre("burnProgressDidError(Quarn, 0)"));
}

TYPED_TEST(BothBurnStatus, AnErrorSaysWhichFileAndSectorItIsAbout) {
    const BurnErrorInfo info = {.path = "/a.mp3", .sector = 0, .message = "/a.mp3: gone"};
    this->heardOf({.state = DRStatusStateFailed,
                   .error = static_cast<std::uint32_t>(DRError::SourceMissing),
                   .errorInfo = info});
    EXPECT_EQ(this->delegate.errors().back(),
              (BurnError{"Quarn", signedCode(DRError::SourceMissing), info}));
    this->heardOf({.state = DRStatusStateFailed, .error = 0x8002F012});
    EXPECT_EQ(this->delegate.errors().back().info, BurnErrorInfo());
}

TYPED_TEST(BothBurnStatus, AfterDoneNothingMoreIsHeardAndTheBurnObjectIsGone) {
    const auto burn = this->start();
    this->say(burn, {.state = DRStatusStateDone});
    this->say(burn, {.state = DRStatusStatePreparing});
    this->say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnProgressDidDone"));
    EXPECT_EQ(this->burner->_burner, nullptr);
}

TYPED_TEST(BothBurnStatus, AfterAFailureNothingMoreIsHeardAndTheBurnObjectIsGone) {
    const auto burn = this->start();
    burn->post(BurnRecord{.state = DRStatusStateFailed, .error = 0x80020001});
    burn->post(BurnRecord{.state = DRStatusStateFailed, .error = 0x80020001});
    this->finishRuns();
    EXPECT_EQ(this->delegate.calls().size(), 1U);
    EXPECT_EQ(this->burner->_burner, nullptr);
}

TYPED_TEST(BothBurnStatus, TheBurnObjectIsStillThereDuringTheLastCallback) {
    const auto burn = this->start();
    bool wasThere = false;
    this->delegate.whenCalled = [&](const std::string&) {
        wasThere = this->burner->_burner == burn;
    };
    this->say(burn, {.state = DRStatusStateDone});
    EXPECT_TRUE(wasThere);
}

TYPED_TEST(BothBurnStatus, AnUnknownStateIsLoggedAndChangesNothing) {
    const auto burn = this->start();
    this->say(burn, {.state = DRStatusStateSessionOpen});
    this->say(burn, {.state = "DRStatusStateErasing"});
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
    EXPECT_THAT(this->platform.log(), ElementsAre("currentStatus:DRStatusStateSessionOpen",
                                                  "currentStatus:DRStatusStateErasing"));
    EXPECT_EQ(this->burner->_burner, burn);
    this->say(burn, {.state = DRStatusStateDone});
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnProgressDidDone"));
}

TYPED_TEST(BothBurnStatus, TheStatusArrivesOnTheThreadThatStartedTheBurn) {
    this->start();
    this->platform.lastBurn()->play();
    this->finishRuns();
    for (const auto& call : this->delegate.callsWithThreads())
        EXPECT_EQ(call.thread, std::this_thread::get_id()) << call.text;
}

TYPED_TEST(BothBurnStatus, ACancelInEveryStateEndsWithTheCancellation) {
    const std::size_t records = [&] {
        this->start();
        return recordsOf({}, this->platform.lastBurn()->layout()).size();
    }();
    for (std::size_t heard = 0; heard + 1 < records; ++heard) {
        const auto burn = this->start();
        burn->play();
        for (std::size_t turn = 0; turn < 2 * heard; ++turn)
            ASSERT_TRUE(this->platform.runOnce());
        this->burner->stopBurn();
        this->finishRuns();
        EXPECT_EQ(this->delegate.calls().back(), "burnProgressDidCanceled");
        EXPECT_EQ(this->delegate.count("burnProgressDidDone"), 0U);
        EXPECT_EQ(this->delegate.count("burnProgressDidCanceled"), 1U);
        EXPECT_EQ(this->burner->_burner, nullptr);
    }
}

} // namespace
} // namespace quarner::testing
