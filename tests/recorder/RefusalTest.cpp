// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/recorder/RecorderTest.h"

namespace quarner {
namespace {

using testing::HasSubstr;

constexpr std::uint32_t blocksOf80Minutes = 359'847;

class RecorderRefusal : public Recorder {
protected:
    /// Burns a layout and answers the code of its failure.
    std::uint32_t codeFor(const DRLayout& layout) {
        const auto burn = makeBurn();
        const auto log = observe(burn);
        burn->writeLayout(layout);
        EXPECT_TRUE(runToEnd(*log));
        EXPECT_EQ(log->count(DRStatusStateSessionOpen), 0U) << "refused before the first byte";
        info = log->info();
        return log->code();
    }

    /// A layout of two tracks that takes so many sectors of the disc.
    DRLayout layoutOfSectors(std::uint32_t sectors) {
        DRLayout layout = {makeTrack(1000)};
        const auto last = makeTrack(1000);
        last->setLength(DRMSF::msfWithFrames(sectors - 300 - gap));
        layout.push_back(last);
        return layout;
    }

    std::string info;
};

TEST_P(RecorderRefusal, OfAnEmptyLayout) { EXPECT_EQ(codeFor({}), codeOf(DRError::EmptyLayout)); }

TEST_P(RecorderRefusal, OfAHundredTracks) {
    EXPECT_EQ(codeFor(DRLayout(100, makeTrack(1000))), codeOf(DRError::TooManyTracks));
}

TEST_P(RecorderRefusal, OfOneSectorTooMany) {
    EXPECT_EQ(codeFor(layoutOfSectors(blocksOf80Minutes + 1)), codeOf(DRError::MediaTooSmall));
}

TEST_P(RecorderRefusal, NotOfALayoutThatFillsTheDisc) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateSessionOpen)
            burn->abort();
    };
    burn->writeLayout(layoutOfSectors(blocksOf80Minutes));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
}

TEST_P(RecorderRefusal, OfLengthsWhoseSumIsBeyond32Bits) {
    DRLayout layout;
    for (int i = 0; i < 2; ++i) {
        const auto track = makeTrack(1000);
        track->setLength(DRMSF::msfWithFrames(0x80000000U));
        layout.push_back(track);
    }
    EXPECT_EQ(codeFor(layout), codeOf(DRError::MediaTooSmall));
}

TEST_P(RecorderRefusal, OfATrackShorterThanItsSound) {
    const auto track = makeTrack(588 * 400);
    track->setLength(DRMSF::msfWithFrames(399));
    EXPECT_EQ(codeFor({track}), codeOf(DRError::Internal));
}

TEST_P(RecorderRefusal, WithoutADisc) {
    ASSERT_TRUE(stage->drive()->ejectMedia());
    EXPECT_EQ(codeFor(makeLayout({1000})), codeOf(DRError::MediaNotPresent));
}

TEST_P(RecorderRefusal, WithoutADrive) {
    const auto burn = service()->burnForDevice(nullptr);
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished));
}

TEST_P(RecorderRefusal, OnADriveThatIsUnplugged) {
    const auto layout = makeLayout({1000});
    stage->unplug();
    EXPECT_EQ(codeFor(layout), codeOf(DRError::DeviceVanished));
}

TEST_P(RecorderRefusal, OfASourceThatIsGone) {
    const auto layout = makeLayout({1000, 1000});
    std::filesystem::remove(layout[1]->path);
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceMissing));
    EXPECT_THAT(info, HasSubstr(layout[1]->path));
}

TEST_P(RecorderRefusal, OfASourceThatShrank) {
    const auto layout = makeLayout({1000, 1000});
    std::filesystem::resize_file(layout[1]->path, 400);
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceChanged));
    EXPECT_THAT(info, HasSubstr(layout[1]->path));
}

TEST_P(RecorderRefusal, OfASourceThatWasWrittenAnew) {
    const auto layout = makeLayout({1000, 1000});
    const auto time = std::filesystem::last_write_time(layout[0]->path);
    std::filesystem::last_write_time(layout[0]->path, time + std::chrono::nanoseconds(1));
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceChanged));
    EXPECT_THAT(info, HasSubstr(layout[0]->path));
}

INSTANTIATE_RECORDER_SUITE(RecorderRefusal);

} // namespace
} // namespace quarner
