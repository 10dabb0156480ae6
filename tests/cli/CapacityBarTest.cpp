// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CapacityBar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>

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

/// A compilation that takes an amount of a disc.
Compilation disc(std::uint64_t used, std::uint64_t total, DiscKind kind = DiscKind::Audio) {
    DiscCapacity capacity;
    capacity.isDiscKnown = true;
    capacity.used = used;
    capacity.total = total;
    capacity.free = total - std::min(used, total);
    capacity.usedText = amountText(kind, used);
    capacity.totalText = amountText(kind, total);
    capacity.freeText = amountText(kind, capacity.free);
    capacity.fits = used <= total;
    return {kind, std::make_shared<DiscItems>(), capacity};
}

TEST(UsageLine, ShowsWhatIsUsedOfTheDisc) {
    EXPECT_EQ(usageLine(disc(2400, 4800), 80, false),
              "[###############---------------] 00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(usageLine(disc(4800, 4800), 80, false),
              "[##############################] 01:20:00 of 01:20:00, 00:00:00 left");
    EXPECT_EQ(usageLine(disc(4810, 4800), 80, false),
              "[##############################] 01:20:10 of 01:20:00, 00:00:10 too long");
}

TEST(UsageLine, SaysWhatDoesNotFitThoughTheSecondsAreEqual) {
    Compilation compilation = disc(4800, 4800);
    compilation.capacity.fits = false;
    EXPECT_EQ(usageLine(compilation, 80, false),
              "[############################] 01:20:00 of 01:20:00, less than a second too long");
    compilation.capacity.count = 101;
    EXPECT_EQ(usageLine(compilation, 80, false),
              "[##############################] 01:20:00 of 01:20:00, 2 tracks too many");
}

TEST(UsageLine, OfADataDiscCountsBytes) {
    const ScriptedPlatform platform;
    EXPECT_EQ(usageLine(disc(1048576, 4194304, DiscKind::Data), 80, false),
              "[#######-----------------------] 1 MB of 4 MB, 3 MB left");
    EXPECT_EQ(usageLine(disc(5242880, 4194304, DiscKind::Data), 80, false),
              "[##############################] 5 MB of 4 MB, 1 MB too much");
}

TEST(UsageLine, LeavesTheBarOutWhereThereIsNoRoom) {
    EXPECT_EQ(usageLine(disc(2400, 4800), 40, false), "00:40:00 of 01:20:00, 00:40:00 left");
    EXPECT_EQ(displayWidth(usageLine(disc(2400, 4800), 20, false)), 20U);
}

TEST(UsageLine, SaysThatThereIsNoDisc) {
    EXPECT_EQ(usageLine({DiscKind::Audio, std::make_shared<DiscItems>(), {}}, 80, false),
              "There is no disc in the drive.");
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
