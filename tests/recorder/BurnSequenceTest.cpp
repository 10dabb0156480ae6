// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <thread>

#include "tests/recorder/RecorderTest.h"

namespace quarner {
namespace {

using testing::Each;
using testing::Not;

class RecorderBurn : public Recorder {};

TEST_P(RecorderBurn, ABurnTellsOfEveryStepInOrderAndEndsDone) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    const DRLayout layout = makeLayout({588 * 400, 1000});
    burn->writeLayout(layout);
    ASSERT_TRUE(runToEnd(*log));
    std::vector<std::string> steps = {"Preparing", "SessionOpen"};
    for (std::size_t i = 1; i <= layout.size(); ++i)
        for (const char* step : {"TrackOpen ", "TrackWrite ", "TrackClose "})
            steps.push_back(step + std::to_string(i) + '/' + std::to_string(layout.size()));
    for (const char* step : {"SessionClose", "Finishing", "Verifying", "Done"})
        steps.emplace_back(step);
    EXPECT_EQ(log->states(), steps) << log->info();
}

TEST_P(RecorderBurn, RecordsComeOnTheThreadThatStartedTheBurn) {
    std::thread([this] {
        const auto burn = makeBurn();
        const auto log = observe(burn);
        const auto thread = std::this_thread::get_id();
        std::vector<std::thread::id> seen;
        log->onRecord = [&](const Dictionary&) { seen.push_back(std::this_thread::get_id()); };
        burn->writeLayout(makeLayout({1000}));
        ASSERT_TRUE(runToEnd(*log));
        EXPECT_TRUE(log->isDone()) << log->info();
        EXPECT_THAT(seen, Each(thread));
    }).join();
}

TEST_P(RecorderBurn, TheFractionRisesToOneInEachPhase) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 1500, 588 * 1500, 588 * 1500}));
    ASSERT_TRUE(runToEnd(*log));
    ASSERT_TRUE(log->isDone()) << log->info();
    for (const char* state : {DRStatusStateTrackWrite, DRStatusStateVerifying}) {
        const std::vector<double> fractions = log->fractions(state);
        ASSERT_FALSE(fractions.empty()) << state;
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end())) << state;
        EXPECT_EQ(fractions.back(), 1.0) << state;
    }
    const std::vector<double> all = log->fractions();
    EXPECT_EQ(std::count(all.begin(), all.end(), 1.0), 2) << "no other state tells it again";
}

TEST_P(RecorderBurn, ASecondLayoutForTheSameBurnIsIgnored) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({1000}));
    burn->writeLayout(makeLayout({1000, 1000}));
    ASSERT_TRUE(runToEnd(*log));
    stage->shutDown();
    stage->loops().runPending();
    EXPECT_EQ(log->ends(), 1U);
    EXPECT_THAT(log->states(), Not(testing::Contains("TrackOpen 1/2")));
}

TEST_P(RecorderBurn, NoRecordComesBeforeTheCallerIsBackInItsRunLoop) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    stage->loops().waitForPostAfter([&] { burn->writeLayout({}); });
    EXPECT_TRUE(log->records().empty());
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::EmptyLayout));
}

TEST_P(RecorderBurn, WithoutVerificationTheDiscIsNotReadBack) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->setProperties({{DRBurnVerifyDiscKey, false}});
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_EQ(log->count(DRStatusStateVerifying), 0U);
}

class RecorderWriting : public WritingRecorder {};

TEST_P(RecorderWriting, TheDiscHoldsEverySourceWhole) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 310 + 1, 1, 588 * 300}));
    ASSERT_TRUE(runToEnd(*log));
    ASSERT_TRUE(log->isDone()) << log->info();
    EXPECT_TRUE(writing.contentsOnDisc() == writing.expectedContentsOf(paths));
}

TEST_P(RecorderWriting, TheSpeedIsTheBlocksOfASecond) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    const auto start = std::chrono::steady_clock::now();
    burn->writeLayout(makeLayout({588 * 3000}));
    ASSERT_TRUE(runToEnd(*log));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    const Dictionary& last = log->records().at(log->records().size() - 2);
    ASSERT_EQ(BurnLog::stateOf(last), DRStatusStateVerifying);
    const double speed = valueFor(last, DRStatusCurrentSpeedKey).asDouble();
    EXPECT_GT(speed, 0.0);
    // The speed is that of the last second, which may be slower than those before it.
    if (took < std::chrono::seconds(1)) {
        EXPECT_GE(speed, static_cast<double>(writing.blocksOnDisc()) / took.count())
            << "a part of the burn is not slower than the whole";
    }
}

TEST_P(RecorderWriting, ABurnGoesOnWhenNobodyHoldsItAnyMore) {
    auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 1000}));
    const std::weak_ptr<DRBurn> held = burn;
    burn.reset();
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_TRUE(stage->loops().runUntil([&] { return held.expired(); }));
}

TEST_P(RecorderWriting, ShuttingDownEndsABurnThatIsUnderWay) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 4000}));
    stage->loops().runUntil([&] { return log->count(DRStatusStateTrackWrite) > 0; });
    stage->shutDown();
    stage->loops().runPending();
    EXPECT_EQ(log->ends(), 1U);
}

INSTANTIATE_RECORDER_SUITE(RecorderBurn);
INSTANTIATE_WRITING_SUITE(RecorderWriting);

} // namespace
} // namespace quarner
