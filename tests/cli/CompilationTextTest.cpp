// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CompilationText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tools/quarner/text/Columns.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

DiscItemRef item(const std::string& name, const std::string& duration, std::int64_t size) {
    DiscItem item;
    item.displayName = name;
    item.duration = duration;
    item.bytes = size;
    item.size = std::to_string(size) + " B";
    return std::make_shared<DiscItem>(item);
}

/// Of an audio disc.
Compilation compilation(const DiscItems& items) {
    DiscCapacity capacity;
    capacity.contentText = "all tracks";
    capacity.usedText = "00:04:29";
    capacity.fileBytesText = "1 KB";
    return {DiscKind::Audio, std::make_shared<DiscItems>(items), capacity};
}

TEST(TrackList, AlignsNamesDurationsAndSizesAndEndsWithTheSum) {
    EXPECT_THAT(
        trackList(compilation({item("Alpha", "00:03:25", 1000), item("音楽", "00:01:00", 24)}), 60),
        ElementsAre("  1  Alpha                                00:03:25    1000 B",
                    "  2  音楽                                 00:01:00      24 B",
                    "     all tracks                           00:04:29      1 KB"));
}

TEST(TrackList, FitsTheScreen) {
    const Compilation wide = compilation({item(std::string(300, 'x'), "00:03:25", 1000)});
    for (const std::size_t columns : {40U, 60U, 78U})
        for (const std::string& line : trackList(wide, columns))
            EXPECT_EQ(displayWidth(line), columns) << line;
    for (const std::string& line : trackList(wide, 200))
        EXPECT_EQ(displayWidth(line), 78U) << line;
}

TEST(TrackList, ControlCharactersInANameAreHarmless) {
    EXPECT_THAT(trackList(compilation({item("a\x1b[2Jb", "00:03:25", 1000)}), 60).front(),
                HasSubstr("a\uFFFD[2Jb "));
}

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

std::string lineFor(const std::string& text, double fraction, const std::string& left,
                    std::size_t columns, bool isUtf8 = false) {
    DiscBurnProgress progress;
    progress.text = text;
    progress.fraction = fraction;
    progress.timeLeftText = left;
    return progressLine(progress, columns, isUtf8);
}

TEST(ProgressLine, ShowsStateTrackPercentAndTimeLeft) {
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, "1:07", 80),
              "Writing track 2 of 9 [###############---------------]  50%   1:07 left");
}

TEST(ProgressLine, KeepsThePlaceOfATimeThatIsNotKnown) {
    EXPECT_EQ(lineFor("Verifying", 0.5, "", 40), "Verifying [#####------]  50%  --:-- left");
}

TEST(ProgressLine, GivesUpTheBarFirstAndThenTheTime) {
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, "1:07", 40),
              "Writing track 2 of 9  50%   1:07 left");
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, "1:07", 30), "Writing track 2 of 9 50%");
    EXPECT_EQ(lineFor("Writing track 2 of 9", 0.5, "1:07", 12), "Writi... 50%");
    EXPECT_EQ(lineFor("Verifying", 1.0, "0:00", 14), "Verifying 100%");
    EXPECT_EQ(lineFor("Verifying", 1.0, "0:00", 5), "100%");
}

TEST(ProgressLine, NeverExceedsTheScreen) {
    for (std::size_t columns = 4; columns < 120; ++columns)
        EXPECT_LE(displayWidth(lineFor("Writing track 99 of 99", 1.0, "9:59:59", columns, true)),
                  columns);
}

} // namespace
} // namespace quarner::cli
