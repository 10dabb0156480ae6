// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CapacityBar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "quarner/scripted.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

TEST(Bar, IsFilledToTheFraction) {
    EXPECT_EQ(bar(0.0, 12, false), "[----------]");
    EXPECT_EQ(bar(0.5, 12, false), "[#####-----]");
    EXPECT_EQ(bar(1.0, 12, false), "[##########]");
    EXPECT_EQ(bar(0.5, 6, true), "[██░░]");
}

TEST(Bar, IsFullOnlyForTheWholeAndEmptyOnlyForNothing) {
    EXPECT_EQ(bar(0.999, 12, false), "[#########-]");
    EXPECT_EQ(bar(0.001, 12, false), "[#---------]");
}

TEST(Bar, StaysWithinItsBoundsWhateverTheFraction) {
    EXPECT_EQ(bar(17.0, 6, false), "[####]");
    EXPECT_EQ(bar(-3.0, 6, false), "[----]");
    EXPECT_EQ(bar(std::nan(""), 6, false), "[----]");
    EXPECT_EQ(bar(1.0, 0, false), "[#]");
}

TEST(TimeLeft, IsToldInMinutesAndInHoursWhereThereAreSome) {
    EXPECT_EQ(timeLeftText(0), "0:00");
    EXPECT_EQ(timeLeftText(67), "1:07");
    EXPECT_EQ(timeLeftText(3723), "1:02:03");
    EXPECT_EQ(timeLeftText(359999), "99:59:59");
    EXPECT_EQ(timeLeftText(360000), "--:--");
    EXPECT_EQ(timeLeftText(std::numeric_limits<std::uint64_t>::max()), "--:--");
}

TEST(UsageLine, ShowsUsedAgainstFreeTime) {
    EXPECT_EQ(usageLine({{}, 2400, 4800, true, false}, 80, false),
              "[###############---------------] 00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(usageLine({{}, 4800, 4800, true, false}, 80, false),
              "[##############################] 01:20:00 of 01:20:00, 00:00:00 left");
    EXPECT_EQ(usageLine({{}, 4810, 4800, true, true}, 80, false),
              "[##############################] 01:20:10 of 01:20:00, 00:00:10 too long");
}

TEST(UsageLine, MakesSenseAlsoOfADiscThatCameOrWentMeanwhile) {
    EXPECT_EQ(usageLine({{}, 2400, 4800, true, true}, 80, false),
              "[##############--------------] 00:40:00 of 01:20:00, less than a second too long");
    EXPECT_EQ(usageLine({{}, 2400, 0, true, false}, 80, false),
              "[##############################] 00:40:00 of 00:00:00, 00:40:00 too long");
}

TEST(UsageLine, OfADataDiscCountsBytes) {
    const ScriptedPlatform platform;
    EXPECT_EQ(usageLine({{}, 1048576, 4194304, true, false, DiscKind::Data}, 80, false),
              "[#######-----------------------] 1 MB of 4 MB, 3 MB left");
    EXPECT_EQ(usageLine({{}, 5242880, 4194304, true, true, DiscKind::Data}, 80, false),
              "[##############################] 5 MB of 4 MB, 1 MB too much");
}

TEST(UsageLine, LeavesTheBarOutWhereThereIsNoRoom) {
    EXPECT_EQ(usageLine({{}, 2400, 4800, true, false}, 40, false),
              "00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(displayWidth(usageLine({{}, 2400, 4800, true, false}, 20, false)), 20U);
}

TEST(UsageLine, SaysThatThereIsNoDisc) {
    EXPECT_EQ(usageLine({{}, 2400, 0, false, false}, 80, false), "There is no disc in the drive.");
}

TEST(ProgressLine, ShowsStateTrackPercentAndTimeLeft) {
    EXPECT_EQ(progressLine("Writing track 2 of 9", 0.5, 67, 80, false),
              "Writing track 2 of 9 [###############---------------]  50%   1:07 left");
}

TEST(ProgressLine, KnowsNoTimeLeftBeforeThereIsProgress) {
    EXPECT_EQ(progressLine("Verifying", 0.0, 0, 40, false),
              "Verifying [-----------]   0%  --:-- left");
}

TEST(ProgressLine, HasNoTimeWhereItIsNeverTold) {
    EXPECT_EQ(progressLine("Verifying", 0.5, std::nullopt, 30, false),
              "Verifying [######-------]  50%");
}

TEST(ProgressLine, GivesUpTheBarFirstAndThenTheTime) {
    EXPECT_EQ(progressLine("Writing track 2 of 9", 0.5, 67, 40, false),
              "Writing track 2 of 9  50%   1:07 left");
    EXPECT_EQ(progressLine("Writing track 2 of 9", 0.5, 67, 30, false), "Writing track 2 of 9 50%");
    EXPECT_EQ(progressLine("Writing track 2 of 9", 0.5, 67, 12, false), "Writi... 50%");
}

TEST(ProgressLine, NeverExceedsTheScreen) {
    for (std::size_t columns = 4; columns < 120; ++columns)
        EXPECT_LE(displayWidth(progressLine("Writing track 99 of 99", 1.0, 35999, columns, true)),
                  columns);
}

} // namespace
} // namespace quarner::cli
