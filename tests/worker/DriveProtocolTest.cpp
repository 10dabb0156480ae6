// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "adapters/worker/DriveProtocol.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

DRError codeSent(const Dictionary& fields) {
    try {
        throwFailure(fields);
    } catch (const BurnFailure& failure) {
        return failure.error();
    }
}

TEST(WhatADriveReports, ArrivesAsItIs) {
    DiscFacts disc;
    disc.state = DiscFacts::State::Blank;
    disc.type = DRDeviceMediaTypeCDRW;
    disc.isErasable = true;
    disc.usedBlocks = 7;
    disc.freeBlocks = 359'849;
    disc.speeds = {75, 300};
    EXPECT_EQ(fieldsOf(discFactsOf(fieldsOf(disc))), fieldsOf(disc));
    EXPECT_EQ(discFactsOf(fieldsOf(disc)).speeds, disc.speeds);
}

TEST(WhatADriveReports, IsReplacedWhereItCannotBe) {
    const DiscFacts disc = discFactsOf({{"state", 77},
                                        {"type", "no disc"},
                                        {"usedBlocks", -1},
                                        {"freeBlocks", std::int64_t(1) << 40},
                                        {"speeds", Array{-1, 0, "75", 300, 1e300, noNumber}}});
    EXPECT_EQ(disc.state, DiscFacts::State::None);
    EXPECT_EQ(disc.type, DRDeviceMediaTypeUnknown);
    EXPECT_EQ(disc.usedBlocks, 0U);
    EXPECT_EQ(disc.freeBlocks, 0xFFFFFFFFU);
    EXPECT_EQ(disc.speeds, std::vector<std::int64_t>{300});
    EXPECT_EQ(discFactsOf({{"speeds", Array(5000, Value(75))}}).speeds.size(), 64U);
}

TEST(APlanThatIsSent, ArrivesAsItIsOrNotAtAll) {
    DiscPlan plan;
    plan.tracks = {{150, 300}, {0, 600}};
    EXPECT_EQ(fieldsOf(discPlanOf(fieldsOf(plan))), fieldsOf(plan));
    plan.tracks.resize(mostTracks + 1);
    EXPECT_THROW(discPlanOf(fieldsOf(plan)), BurnFailure);
    EXPECT_THROW(discPlanOf({}), BurnFailure);
    EXPECT_THROW(discPlanOf({{"tracks", Array{Dictionary{{"length", -1}}}}}), BurnFailure);
    EXPECT_THROW(discPlanOf({{"tracks", Array{Dictionary{{"length", 1e300}}}}}), BurnFailure);
}

TEST(ASpeedThatIsSent, IsAboveZeroOrNone) {
    EXPECT_EQ(burnSettingsOf({{"requestedSpeed", 300.0}}).requestedSpeed, 300.0);
    EXPECT_FALSE(burnSettingsOf({}).requestedSpeed);
    EXPECT_FALSE(burnSettingsOf({{"requestedSpeed", noNumber}}).requestedSpeed);
    EXPECT_FALSE(burnSettingsOf({{"requestedSpeed", -1e300}}).requestedSpeed);
}

TEST(AFailureThatIsSent, ArrivesAsItIs) {
    const BurnFailure failure(DRError::WriteFailed, "no", "/a", 16);
    try {
        throwFailure(fieldsOf(failure));
    } catch (const BurnFailure& found) {
        EXPECT_EQ(fieldsOf(found), fieldsOf(failure));
    }
    EXPECT_THROW(throwFailure(fieldsOf(DriveNotTaken(DRError::DeviceBusy, "no"))), DriveNotTaken);
}

TEST(AFailureThatIsSent, WithACodeThatDoesNotExistIsInternal) {
    EXPECT_EQ(codeSent({{"error", static_cast<std::uint32_t>(DRError::NoSpace)}}),
              DRError::NoSpace);
    for (const Value& error : {Value(0), Value(1), Value(-1), Value("text"), Value(noNumber)})
        EXPECT_EQ(codeSent({{"error", error}}), DRError::Internal);
    EXPECT_EQ(codeSent({}), DRError::Internal);
}

} // namespace
} // namespace quarner
