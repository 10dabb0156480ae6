// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CapacityBar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

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

DiscCapacity disc(std::uint64_t used, std::uint64_t total, const std::string& verdict) {
    DiscCapacity capacity;
    capacity.isDiscKnown = true;
    capacity.used = used;
    capacity.total = total;
    capacity.usedText = "00:40:00";
    capacity.totalText = "01:20:00";
    capacity.verdict = verdict;
    return capacity;
}

TEST(UsageLine, ShowsWhatIsUsedOfTheDisc) {
    EXPECT_EQ(usageLine(disc(2400, 4800, "00:40:00 left"), 80, false),
              "[###############---------------] 00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(usageLine(disc(4810, 4800, "00:00:10 too long"), 80, false),
              "[##############################] 00:40:00 of 01:20:00, 00:00:10 too long");
    EXPECT_EQ(usageLine(disc(2400, 0, "00:40:00 too long"), 80, false),
              "[##############################] 00:40:00 of 01:20:00, 00:40:00 too long");
}

TEST(UsageLine, LeavesTheBarOutWhereThereIsNoRoom) {
    const DiscCapacity capacity = disc(2400, 4800, "00:40:00 left");
    EXPECT_EQ(usageLine(capacity, 40, false), "00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(displayWidth(usageLine(capacity, 20, false)), 20U);
}

TEST(UsageLine, SaysThatThereIsNoDisc) {
    EXPECT_EQ(usageLine({}, 80, false), "There is no disc in the drive.");
}

std::string lineFor(const std::string& text, double fraction, std::optional<std::uint64_t> left,
                    std::size_t columns, bool isUtf8 = false) {
    DiscBurnProgress progress;
    progress.text = text;
    progress.fraction = fraction;
    progress.secondsLeft = left;
    return progressLine(progress, columns, isUtf8);
}

TEST(ProgressLine, ShowsStateTrackPercentAndTimeLeft) {
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, 67, 80),
              "Writing track 2 of 9 [###############---------------]  50%   1:07 left");
}

TEST(ProgressLine, KeepsThePlaceOfATimeThatIsNotKnown) {
    EXPECT_EQ(lineFor("Verifying", 0.5, std::nullopt, 40),
              "Verifying [#####------]  50%  --:-- left");
}

TEST(ProgressLine, GivesUpTheBarFirstAndThenTheTime) {
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, 67, 40),
              "Writing track 2 of 9  50%   1:07 left");
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, 67, 30), "Writing track 2 of 9 50%");
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, 67, 12), "Writi... 50%");
}

TEST(ProgressLine, NeverExceedsTheScreen) {
    for (std::size_t columns = 4; columns < 120; ++columns)
        EXPECT_LE(displayWidth(lineFor("Writing track 99 of 99", 1.0, 35999, columns, true)),
                  columns);
}

} // namespace
} // namespace quarner::cli
