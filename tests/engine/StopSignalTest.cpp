// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/StopSignal.h"

#include <gtest/gtest.h>

#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

/// What an operation of a signal throws; none if it does not.
template <typename Operation>
std::optional<BurnFailure> thrownBy(const Operation& operation) {
    try {
        operation();
        return std::nullopt;
    } catch (const BurnFailure& failure) {
        return failure;
    }
}

TEST(StopSignal, ThrowsNothingBeforeARequest) {
    StopSignal stop;
    EXPECT_FALSE(thrownBy([&] { stop.throwIfRequested(); }));
    EXPECT_FALSE(stop.token().stop_requested());
    EXPECT_FALSE(thrownBy([&] { stop.seal(); }));
}

TEST(StopSignal, ThrowsTheFirstReasonAndWakesWhoWaits) {
    StopSignal stop;
    stop.request(DRError::DeviceVanished);
    stop.request(DRError::UserCanceled);
    EXPECT_TRUE(stop.token().stop_requested());
    const auto failure = thrownBy([&] { stop.throwIfRequested(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->error(), DRError::DeviceVanished);
    EXPECT_EQ(failure->info(), "the drive was unplugged");
}

TEST(StopSignal, CannotBeSealedAfterARequest) {
    StopSignal stop;
    stop.request(DRError::UserCanceled);
    const auto failure = thrownBy([&] { stop.seal(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->error(), DRError::UserCanceled);
    EXPECT_EQ(failure->info(), "the burn was cancelled");
}

TEST(StopSignal, TakesNoRequestOnceItIsSealed) {
    StopSignal stop;
    stop.seal();
    stop.request(DRError::UserCanceled);
    EXPECT_FALSE(thrownBy([&] { stop.throwIfRequested(); }));
    EXPECT_FALSE(stop.token().stop_requested());
}

} // namespace
} // namespace quarner
