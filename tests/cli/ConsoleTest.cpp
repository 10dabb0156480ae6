// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>

#include "tools/quarner/command/Run.h"
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

/// What takes nothing, as a full disk.
struct FullDisk : std::streambuf {
    explicit FullDisk(int errorNumber) : error(errorNumber) {}
    int_type overflow(int_type) override {
        errno = error;
        return traits_type::eof();
    }
    const int error;
};

TEST(Console, KeepsTheReasonForWhichTheOutputCannotBeWritten) {
    FullDisk disk(ENOSPC);
    std::ostream out(&disk);
    std::ostringstream err;
    Console console(out, err, {});
    EXPECT_EQ(console.outputError(), 0);
    console.line("lost");
    console.error("not lost");
    errno = 0;
    console.line("lost too");
    EXPECT_EQ(console.outputError(), ENOSPC);
}

ExitStatus endWith(int error, ExitStatus status, std::string& told) {
    FullDisk disk(error);
    std::ostream out(&disk);
    std::ostringstream err;
    Console console(out, err, {});
    console.line("lost");
    const ExitStatus end = statusAfterOutput(console, status);
    told = err.str();
    return end;
}

TEST(StatusAfterOutput, LostOutputMakesAFailureOfASuccess) {
    std::string told;
    EXPECT_EQ(endWith(ENOSPC, ExitStatus::Success, told), ExitStatus::Failed);
    EXPECT_NE(told, "");
    EXPECT_EQ(endWith(EIO, ExitStatus::Refused, told), ExitStatus::Refused);
    EXPECT_NE(told, "");
}

TEST(StatusAfterOutput, AReaderWhoGoesAwayChangesNothing) {
    std::string told;
    EXPECT_EQ(endWith(EPIPE, ExitStatus::Success, told), ExitStatus::Success);
    EXPECT_EQ(told, "");
}

} // namespace
} // namespace quarner::cli
