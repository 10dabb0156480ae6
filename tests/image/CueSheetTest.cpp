// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "adapters/image/CueSheet.h"

namespace quarner {
namespace {

TEST(CueSheet, ListsTruePositionsAndTheSilenceBeforeLaterTracks) {
    const DiscPlan plan{.tracks = {{0, 300}, {150, 4500 + 75 * 3 + 2}, {0, 300}}};
    EXPECT_EQ(cueSheet(plan, "my mix.bin"), "FILE \"my mix.bin\" BINARY\n"
                                            "  TRACK 01 AUDIO\n"
                                            "    INDEX 01 00:00:00\n"
                                            "  TRACK 02 AUDIO\n"
                                            "    INDEX 00 00:04:00\n"
                                            "    INDEX 01 00:06:00\n"
                                            "  TRACK 03 AUDIO\n"
                                            "    INDEX 01 01:09:02\n");
}

TEST(CueSheet, AFirstTrackWithALongPreGapKeepsWhatLiesAfterSectorZero) {
    EXPECT_EQ(cueSheet({.tracks = {{75, 300}}}, "a.bin"), "FILE \"a.bin\" BINARY\n"
                                                          "  TRACK 01 AUDIO\n"
                                                          "    INDEX 00 00:00:00\n"
                                                          "    INDEX 01 00:01:00\n");
}

TEST(CueSheet, NamesItsBin) {
    EXPECT_EQ(binNamedBy(cueSheet({.tracks = {{0, 300}}}, "two words.bin")), "two words.bin");
    EXPECT_EQ(binNamedBy("REM made elsewhere\r\nFILE \"x.bin\" BINARY\r\n"), "x.bin");
    EXPECT_EQ(binNamedBy("FILE x.bin BINARY\n"), std::nullopt);
    EXPECT_EQ(binNamedBy("FILE \"x.bin"), std::nullopt);
    EXPECT_EQ(binNamedBy(""), std::nullopt);
}

} // namespace
} // namespace quarner
