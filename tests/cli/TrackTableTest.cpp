// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/TrackTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/scripted.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Dictionary item(const std::string& name, const std::string& duration, std::int64_t size) {
    return {{kQuarnItemDisplayNameKey, name},
            {kQuarnItemDurationKey, duration},
            {kQuarnItemFileSizeKey, std::to_string(size) + " B"},
            {kQuarnItemRealFileSizeKey, size}};
}

TEST(TrackList, OneTrackHasOnePause) {
    const ScriptedPlatform platform;
    const Compilation compilation{{item("Alpha", "00:03:25", 1000)}, 207, 4798, true, false};
    EXPECT_THAT(trackList(compilation, 60).back(), HasSubstr(" 1 track and its pause "));
}

TEST(TrackList, AlignsNamesDurationsAndSizesAndEndsWithTheSum) {
    const ScriptedPlatform platform;
    const Compilation compilation{
        {item("Alpha", "00:03:25", 1000), item("音楽", "00:01:00", 24)}, 269, 4798, true, false};
    EXPECT_THAT(trackList(compilation, 60),
                ElementsAre("  1  Alpha                                00:03:25    1000 B",
                            "  2  音楽                                 00:01:00      24 B",
                            "     2 tracks and their pauses            00:04:29      1 KB"));
}

TEST(TrackList, FitsTheScreen) {
    const ScriptedPlatform platform;
    const Compilation compilation{
        {item(std::string(300, 'x'), "00:03:25", 1000)}, 269, 4798, true, false};
    for (const std::size_t columns : {40U, 60U, 78U})
        for (const std::string& line : trackList(compilation, columns))
            EXPECT_EQ(displayWidth(line), columns) << line;
    for (const std::string& line : trackList(compilation, 200))
        EXPECT_EQ(displayWidth(line), 78U) << line;
}

TEST(TrackList, ControlCharactersInANameAreHarmless) {
    const ScriptedPlatform platform;
    const Compilation compilation{{item("a\x1b[2Jb", "00:03:25", 1000)}, 269, 4798, true, false};
    EXPECT_THAT(trackList(compilation, 60).front(), HasSubstr("a\uFFFD[2Jb "));
}

} // namespace
} // namespace quarner::cli
