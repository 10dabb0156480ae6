// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "tests/ffmpeg/Decoding.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {

/// Returns the number of bytes that this process has read from files.
inline std::uint64_t bytesReadSoFar() {
    std::ifstream counts("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    counts >> name >> bytes;
    return name == "rchar:" ? bytes : 0;
}

/// Returns the most memory that this process has had, in KiB.
inline long peakMemory() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// For tests of the length and the sound of files.
class Measuring : public ::testing::Test {
protected:
    /// Returns the sound of a file, and expects that it is as long as it is measured.
    std::vector<std::int16_t> decodedAsMeasured(const std::string& path) const {
        const auto length = service->measure(path);
        const auto samples = decoded(*service, path);
        EXPECT_TRUE(length && samples);
        if (!length || !samples)
            return {};
        EXPECT_EQ(samples->size(), 2 * length->discSamples);
        return *samples;
    }
    /// The same for an M4A file with this content.
    std::vector<std::int16_t> decodedContent(const std::string& content) const {
        return decodedAsMeasured(folder.write("a.m4a", content));
    }

    const TemporaryFolder folder;
    const std::shared_ptr<PCMService> service = makeFFmpegPCMService();
};

} // namespace quarner::testing
