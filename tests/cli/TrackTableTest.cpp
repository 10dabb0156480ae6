// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CompilationText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

} // namespace
} // namespace quarner::cli
