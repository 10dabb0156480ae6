// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

/// Data discs of many files, and of large ones.
class DataScale : public ImageTest {
protected:
    DataScale() : ImageTest(isoFormat()) {}

    /// Makes `count` sparse files of `size` bytes.
    Paths makeHoles(std::size_t count, std::uintmax_t size) {
        Paths paths;
        for (std::size_t i = 0; i < count; ++i) {
            paths.push_back(stage->makeSource(1));
            std::filesystem::resize_file(paths.back(), size);
        }
        return paths;
    }

    /// Returns the processor time to make nodes of the files and to lay them out, twice.
    double secondsToLayOut(const Paths& paths) {
        const std::clock_t start = std::clock();
        const DRLayout layout = stage->layoutOf(paths);
        EXPECT_GT(layout[0]->estimateLength(), paths.size() * 147);
        EXPECT_EQ(stage->layoutOf(paths)[0]->estimateLength(), layout[0]->estimateLength());
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }

    /// Returns the better of two results, because the machine is shared.
    double leastSecondsToLayOut(const Paths& paths) {
        return std::min(secondsToLayOut(paths), secondsToLayOut(paths));
    }

    /// Returns the peak memory, in KiB, of a process that burned one file of `size` bytes.
    long peakOfBurning(std::uintmax_t size) {
        const Paths paths = makeHoles(1, size);
        const pid_t child = fork();
        if (child == 0)
            _exit(burn(paths).isDone ? 0 : 1);
        int status = 1;
        rusage usage = {};
        EXPECT_EQ(wait4(child, &status, 0, &usage), child);
        EXPECT_EQ(status, 0) << "the burn in the child failed";
        return usage.ru_maxrss;
    }
};

TEST_F(DataScale, FourTimesTheFilesTakeAboutFourTimesAsLong) {
    const Paths many = makeHoles(2000, 300'000);
    const Paths few(many.begin(), many.begin() + 500);
    const double ratio = leastSecondsToLayOut(many) / leastSecondsToLayOut(few);
    RecordProperty("ratio", std::to_string(ratio));
    EXPECT_LT(ratio, 10.0) << "16 would be the square";
}

TEST_F(DataScale, TwoThousandFilesAreBurnt) {
    const Paths paths = makeHoles(2000, 3000);
    const Outcome outcome = burn(paths);
    EXPECT_TRUE(outcome.isDone) << outcome.info;
    EXPECT_TRUE(imageHolds(paths));
}

TEST_F(DataScale, TheMemoryDoesNotGrowWithTheBytes) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers' own memory grows with every byte that is touched";
#endif
    constexpr std::uintmax_t mebibyte = 1 << 20;
    const long small = peakOfBurning(100 * mebibyte);
    const long large = peakOfBurning(600 * mebibyte);
    RecordProperty("growthInKiB", std::to_string(large - small));
    // Of 500 MiB more; what the threads' heaps take varies by a few MiB.
    EXPECT_LT(large - small, 24 * 1024);
}

} // namespace
} // namespace quarner
