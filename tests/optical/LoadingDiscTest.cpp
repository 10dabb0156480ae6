// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <thread>

#include "quarner/platform/DRKeys.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

/// A drive that is still loading or examining its disc.
class LoadingDisc : public testing::Test, public OpticalStage {
protected:
    void setNotReady(unsigned times) {
        UnitFaults faults;
        faults.notReady = times;
        recorder->setFaults(faults);
        drive->mediaChanged();
    }
    static constexpr unsigned forEver = 1'000'000;
};

TEST_F(LoadingDisc, IsToldOfAtOnce) {
    setNotReady(forEver);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(drive->mediaIsTransitioning());
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_FALSE(drive->mediaSpaceFree());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_TRUE(recorder->commands().empty()) << "it is left alone until then";
    expectReleased();
}

TEST_F(LoadingDisc, IsAskedForAgainUntilItIsReady) {
    setNotReady(forEver);
    EXPECT_TRUE(drive->mediaIsTransitioning());
    recorder->setFaults({});
    EXPECT_TRUE(drive->mediaIsTransitioning()) << "not asked again at once";
    time += OpticalDrive::keptFor;
    EXPECT_FALSE(drive->mediaIsTransitioning());
    EXPECT_TRUE(drive->mediaIsBlank());
}

TEST_F(LoadingDisc, IsWaitedForByABurn) {
    setNotReady(5);
    const auto log = burn(audio({310}));
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_F(LoadingDisc, IsNotWaitedForWhenTheBurnIsCancelled) {
    setNotReady(forEver);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    const auto start = std::chrono::steady_clock::now();
    burning->writeLayout(audio({310}));
    ASSERT_TRUE(loops->runUntil([&] { return !log->states().empty(); })) << "it has begun";
    burning->abort();
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    recorder->setFaults({});
    EXPECT_TRUE(drive->mediaIsBlank()) << "nothing is kept of the time before";
    expectReleased();
}

TEST_F(LoadingDisc, KeepsNoOtherDriveFromAnswering) {
    setNotReady(forEver);
    const auto other = bed.plug({});
    const auto otherDrive = makeDrive(*other);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    burning->writeLayout(audio({310}));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(otherDrive->mediaIsBlank());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    burning->abort();
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
}

} // namespace
} // namespace quarner
