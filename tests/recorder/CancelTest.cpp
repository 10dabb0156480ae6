// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <array>

#include "tests/recorder/RecorderTest.h"

namespace quarner {
namespace {

constexpr std::array statesBeforeTheEnd = {DRStatusStatePreparing,  DRStatusStateSessionOpen,
                                           DRStatusStateTrackOpen,  DRStatusStateTrackWrite,
                                           DRStatusStateTrackClose, DRStatusStateSessionClose,
                                           DRStatusStateFinishing,  DRStatusStateVerifying};

class RecorderCancel : public Recorder {
protected:
    /// Replaces the disc of a cancelled burn by a blank one.
    void renewDisc() {
        if (stage->sparesDiscs())
            EXPECT_TRUE(stage->drive()->mediaIsBlank());
        else
            stage->insertBlank();
    }
};

TEST_P(RecorderCancel, ACancelInAnyStateEndsTheBurn) {
    stage->loops().setInStep(true);
    for (const char* const state : statesBeforeTheEnd) {
        SCOPED_TRACE(state);
        const auto burn = makeBurn();
        const auto log = observe(burn);
        log->onRecord = [&](const Dictionary& record) {
            if (BurnLog::stateOf(record) == state)
                burn->abort();
        };
        burn->writeLayout(makeLayout({588 * 700, 588 * 700}));
        ASSERT_TRUE(runToEnd(*log));
        EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
        EXPECT_EQ(BurnLog::stateOf(log->records()[log->records().size() - 2]), state)
            << "nothing more is told before the end";
        renewDisc();
    }
    stage->loops().setInStep(false);
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_P(RecorderCancel, ACancelAtTheEndOfTheVerificationStillCounts) {
    stage->loops().setInStep(true);
    const auto burn = makeBurn();
    const auto log = observe(burn);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateVerifying &&
            valueFor(record, DRStatusPercentCompleteKey).asDouble() == 1.0)
            burn->abort();
    };
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    renewDisc();
}

TEST_P(RecorderCancel, ACancelAfterTheEndDoesNothing) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateDone)
            burn->abort();
    };
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    burn->abort();
    stage->shutDown();
    stage->loops().runPending();
    EXPECT_TRUE(log->isDone());
    EXPECT_EQ(log->ends(), 1U);
}

TEST_P(RecorderCancel, ACancelBeforeTheStartDoesNothing) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->abort();
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_P(RecorderCancel, ACancelRightAfterTheStartCounts) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 20000}));
    burn->abort();
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_EQ(log->ends(), 1U);
}

INSTANTIATE_RECORDER_SUITE(RecorderCancel);

} // namespace
} // namespace quarner
