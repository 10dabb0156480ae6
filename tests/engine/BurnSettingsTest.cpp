// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnSettings.h"

#include <gtest/gtest.h>

#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

TEST(BurnSettings, OfNoPropertiesVerifyAndReplaceNothing) {
    const BurnSettings settings = burnSettings({});
    EXPECT_TRUE(settings.isVerified);
    EXPECT_FALSE(settings.overwritesDisc);
    EXPECT_FALSE(settings.staysAppendable);
    EXPECT_EQ(settings.requestedSpeed, std::nullopt);
}

TEST(BurnSettings, AreWhatThePropertiesSay) {
    const BurnSettings settings = burnSettings({{DRBurnVerifyDiscKey, false},
                                                {DRBurnOverwriteDiscKey, true},
                                                {DRBurnAppendableKey, true},
                                                {DRBurnRequestedSpeedKey, 1200}});
    EXPECT_FALSE(settings.isVerified);
    EXPECT_TRUE(settings.overwritesDisc);
    EXPECT_TRUE(settings.staysAppendable);
    EXPECT_EQ(settings.requestedSpeed, 1200.0);
}

TEST(BurnSettings, TakeEntriesOfAnotherKindAsMissing) {
    const BurnSettings settings = burnSettings({{DRBurnVerifyDiscKey, "no"},
                                                {DRBurnOverwriteDiscKey, Value()},
                                                {DRBurnRequestedSpeedKey, "fast"}});
    EXPECT_TRUE(settings.isVerified);
    EXPECT_FALSE(settings.overwritesDisc);
    EXPECT_EQ(settings.requestedSpeed, std::nullopt);
}

TEST(BurnSettings, NoSpeedIsRequestedByZeroOrLess) {
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, 0}}).requestedSpeed, std::nullopt);
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, -75}}).requestedSpeed, std::nullopt);
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, 0.5}}).requestedSpeed, 0.5);
}

} // namespace
} // namespace quarner
