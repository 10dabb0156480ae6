// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnSettings.h"

#include <gtest/gtest.h>

#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

TEST(BurnSettings, OfNoPropertiesVerifyAndReplaceNothing) {
    const BurnSettings settings = burnSettings({});
    EXPECT_TRUE(settings.verify);
    EXPECT_FALSE(settings.overwrite);
    EXPECT_FALSE(settings.appendable);
    EXPECT_EQ(settings.requestedSpeed, std::nullopt);
}

TEST(BurnSettings, AreWhatThePropertiesSay) {
    const BurnSettings settings = burnSettings({{DRBurnVerifyDiscKey, false},
                                                {DRBurnOverwriteDiscKey, true},
                                                {DRBurnAppendableKey, true},
                                                {DRBurnRequestedSpeedKey, 1200}});
    EXPECT_FALSE(settings.verify);
    EXPECT_TRUE(settings.overwrite);
    EXPECT_TRUE(settings.appendable);
    EXPECT_EQ(settings.requestedSpeed, 1200.0);
}

TEST(BurnSettings, TakeEntriesOfAnotherKindAsMissing) {
    const BurnSettings settings = burnSettings({{DRBurnVerifyDiscKey, "no"},
                                                {DRBurnOverwriteDiscKey, Value()},
                                                {DRBurnRequestedSpeedKey, "fast"}});
    EXPECT_TRUE(settings.verify);
    EXPECT_FALSE(settings.overwrite);
    EXPECT_EQ(settings.requestedSpeed, std::nullopt);
}

TEST(BurnSettings, NoSpeedIsRequestedByZeroOrLess) {
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, 0}}).requestedSpeed, std::nullopt);
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, -75}}).requestedSpeed, std::nullopt);
    EXPECT_EQ(burnSettings({{DRBurnRequestedSpeedKey, 0.5}}).requestedSpeed, 0.5);
}

} // namespace
} // namespace quarner
