// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/FailureCause.h"

#include <gtest/gtest.h>

namespace quarner {
namespace {

constexpr int warning = 1;
constexpr int failure = 2;
constexpr int fatal = 3;

TEST(FailureReason, IsTheFailedCommandAndNotWhatFollowsFromIt) {
    EXPECT_EQ(failureReason({{1, failure, "SCSI error on SEND CUE SHEET: [5 26 00] Illegal"},
                             {2, fatal, "Burn run failed"}},
                            0),
              "SCSI error on SEND CUE SHEET: [5 26 00] Illegal");
}

TEST(FailureReason, IsTheMostSevereOfSeveralFailedCommands) {
    EXPECT_EQ(failureReason({{1, warning, "SET CD SPEED: [5 24 00] Illegal"},
                             {2, fatal, "WRITE: [3 0C 00] Medium"},
                             {3, fatal, "SYNCHRONIZE CACHE: [3 0C 00] Medium"}},
                            0),
              "WRITE: [3 0C 00] Medium");
}

TEST(FailureReason, IsTheFirstOfTheMostSevereWithoutAFailedCommand) {
    EXPECT_EQ(failureReason({{1, warning, "slow"}, {2, fatal, "lost"}, {3, fatal, "over"}}, 0),
              "lost");
}

TEST(FailureReason, IsNotAMessageFromBefore) {
    EXPECT_EQ(failureReason({{1, fatal, "WRITE: [3 0C 00] Medium"}, {2, warning, "slow"}}, 1),
              "slow");
    EXPECT_EQ(failureReason({{1, fatal, "lost"}}, 1), "");
}

} // namespace
} // namespace quarner
