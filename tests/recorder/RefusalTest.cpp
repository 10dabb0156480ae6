// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "quarner/platform/Platform.h"
#include "tests/recorder/RecorderTest.h"
#include "tests/support/KeptLog.h"

namespace quarner {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::uint32_t blocksOf80Minutes = 359'847;

/// For any recorder, or for one that writes.
template <class Base>
class Refusal : public Base {
protected:
    /// Burns a layout and returns the code of its failure.
    std::uint32_t codeFor(const DRLayout& layout) {
        const auto burn = this->makeBurn();
        const auto log = this->observe(burn);
        burn->writeLayout(layout);
        EXPECT_TRUE(this->runToEnd(*log));
        EXPECT_EQ(log->count(DRStatusStateSessionOpen), 0U) << "refused before the first byte";
        info = log->info();
        return log->code();
    }

    std::string info;
};

class RecorderRefusal : public Refusal<Recorder> {};

TEST_P(RecorderRefusal, WithoutADrive) {
    const auto burn = service()->burnForDevice(nullptr);
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished));
}

TEST_P(RecorderRefusal, OfAnEmptyLayout) { EXPECT_EQ(codeFor({}), codeOf(DRError::EmptyLayout)); }

TEST_P(RecorderRefusal, OfOneBlockTooMany) {
    EXPECT_EQ(codeFor(stage->layoutOfBlocks(blocksOf80Minutes + 1)),
              codeOf(DRError::MediaTooSmall));
}

TEST_P(RecorderRefusal, NotOfALayoutThatFillsTheDisc) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateSessionOpen)
            burn->abort();
    };
    burn->writeLayout(stage->layoutOfBlocks(blocksOf80Minutes));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
}

TEST_P(RecorderRefusal, OfASizeBeyond32Bits) {
    EXPECT_EQ(codeFor(stage->hugeLayout()), codeOf(DRError::MediaTooSmall));
}

TEST_P(RecorderRefusal, WithoutADisc) {
    ASSERT_TRUE(stage->drive()->ejectMedia());
    EXPECT_EQ(codeFor(makeLayout({1000})), codeOf(DRError::MediaNotPresent));
}

TEST_P(RecorderRefusal, OnADriveThatIsUnplugged) {
    const DRLayout layout = makeLayout({1000});
    stage->unplug();
    EXPECT_EQ(codeFor(layout), codeOf(DRError::DeviceVanished));
}

class RecorderWritingRefusal : public Refusal<WritingRecorder> {};

TEST_P(RecorderWritingRefusal, OfASourceThatIsGone) {
    const DRLayout layout = makeLayout({1000, 1000});
    std::filesystem::remove(paths[1]);
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceMissing));
    EXPECT_THAT(info, HasSubstr(paths[1]));
}

TEST_P(RecorderWritingRefusal, OfASourceThatShrank) {
    const DRLayout layout = makeLayout({1000, 1000});
    std::filesystem::resize_file(paths[1], 400);
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceChanged));
    EXPECT_THAT(info, HasSubstr(paths[1]));
}

TEST_P(RecorderWritingRefusal, OfASourceThatWasWrittenAnew) {
    const DRLayout layout = makeLayout({1000, 1000});
    const auto time = std::filesystem::last_write_time(paths[0]);
    std::filesystem::last_write_time(paths[0], time + std::chrono::nanoseconds(1));
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceChanged));
    EXPECT_THAT(info, HasSubstr(paths[0]));
}

/// With a platform that records its log.
class RecorderFailureLog : public RecorderWritingRefusal {
protected:
    RecorderFailureLog() { installPlatform({.log = kept}); }
    ~RecorderFailureLog() override { installPlatform({}); }

    const std::shared_ptr<KeptLog> kept = std::make_shared<KeptLog>();
};

TEST_P(RecorderFailureLog, NamesTheFileToBlameOnce) {
    const DRLayout layout = makeLayout({1000});
    std::filesystem::remove(paths[0]);
    codeFor(layout);
    EXPECT_THAT(info, HasSubstr(paths[0]));
    EXPECT_THAT(kept->lines(), testing::ElementsAre("burn failed: " + info));
}

TEST_P(RecorderFailureLog, HasNothingOfACancellation) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 4000}));
    burn->abort();
    ASSERT_TRUE(runToEnd(*log));
    // A library beneath may have said that it was stopped.
    EXPECT_THAT(kept->lines(), Each(Not(StartsWith("burn failed"))));
}

INSTANTIATE_RECORDER_SUITE(RecorderRefusal);
INSTANTIATE_WRITING_SUITE(RecorderWritingRefusal);
INSTANTIATE_WRITING_SUITE(RecorderFailureLog);

class AudioRecorderRefusal : public RecorderWritingRefusal {};

TEST_P(AudioRecorderRefusal, OfAHundredTracks) {
    EXPECT_EQ(codeFor(DRLayout(100, makeLayout({1000})[0])), codeOf(DRError::TooManyTracks));
}

TEST_P(AudioRecorderRefusal, OfATrackShorterThanItsSound) {
    const auto track = service()->trackForAudioFile(stage->makeSource(588 * 400));
    track->setLength(DRMSF::msfWithFrames(399));
    EXPECT_EQ(codeFor({track}), codeOf(DRError::Internal));
}

INSTANTIATE_RECORDER_SUITE_FOR(audioWritingRecorders(), AudioRecorderRefusal);

} // namespace
} // namespace quarner
