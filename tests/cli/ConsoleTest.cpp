// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <sstream>

#include "tools/quarner/host/Console.h"

namespace quarner::cli {
namespace {

Screen terminal(std::size_t columns) {
    return {true, true, [columns] { return columns; }};
}

TEST(Console, APipeGetsNoBottomLine) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {});
    console.status("10%");
    console.line("text");
    EXPECT_EQ(out.str(), "text\n");
}

TEST(Console, ATerminalsBottomLineIsDrawnOverAndMakesWayForOtherLines) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, terminal(80));
    console.status("10%");
    console.status("20%");
    console.status("20%"); // not drawn again
    console.error("oops");
    console.status("");
    EXPECT_EQ(out.str(), "\r10%\x1b[K\r20%\x1b[K" // drawn over
                         "\r\x1b[K\r20%\x1b[K"    // out of the way and back
                         "\r\x1b[K");             // taken away
    EXPECT_EQ(err.str(), "oops\n");
}

TEST(Console, TheBottomLineLeavesTheLastColumnFree) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, terminal(8));
    console.status("0123456789");
    EXPECT_EQ(out.str(), "\r0123...\x1b[K");
}

TEST(Console, KnowsWhenNobodyReadsAnyMore) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {});
    EXPECT_FALSE(console.isBroken());
    out.setstate(std::ios::badbit);
    console.line("lost");
    EXPECT_TRUE(console.isBroken());
}

} // namespace
} // namespace quarner::cli
