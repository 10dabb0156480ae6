// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/PCMTrackSource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/SectorBuffer.h"
#include "adapters/posix/FileStamps.h"
#include "tests/engine/MemoryPCM.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

class PCMTrackSourceTest : public testing::Test {
protected:
    /// The source of a track of `pairs` pairs, though the file plays `pairsInFile`.
    PCMTrackSource makeSource(std::uint64_t pairs, std::uint64_t pairsInFile) {
        pcm->pairs = pairsInFile;
        track->path = path;
        track->sampleCount = pairs;
        track->stamp = stampOfFile(path).value();
        return {pcm, track};
    }

    /// The code with which an operation fails; none for one that works.
    template <typename Operation>
    std::optional<DRError> failureOf(const Operation& operation) {
        try {
            operation();
            return std::nullopt;
        } catch (const BurnFailure& failure) {
            EXPECT_NE(failure.info(), "");
            info = failure.info();
            EXPECT_NE(failure.path(), "");
            EXPECT_TRUE(failure.info().starts_with(failure.path()));
            return failure.error();
        }
    }
    std::optional<DRError> failureOfReading(PCMTrackSource& source) {
        return failureOf([&] { source.read(buffer.bytes()); });
    }
    void changeFile() const { std::ofstream(path, std::ios::app) << "more"; }
    std::int16_t sample(std::size_t index) {
        std::int16_t value = 0;
        std::memcpy(&value, buffer.bytes().data() + index * sizeof value, sizeof value);
        return value;
    }

    std::string info; ///< of the last failure
    TemporaryFolder folder;
    std::string path = folder.write("song.mp3", "song");
    std::shared_ptr<MemoryPCM> pcm = std::make_shared<MemoryPCM>();
    std::shared_ptr<DRTrack> track = std::make_shared<DRTrack>();
    SectorBuffer buffer{400}; // 100 pairs
};

TEST_F(PCMTrackSourceTest, SilenceFollowsTheSamples) {
    PCMTrackSource source = makeSource(150, 150);
    source.read(buffer.bytes());
    EXPECT_EQ(sample(0), MemoryPCM::valueAt(0));
    EXPECT_EQ(sample(199), MemoryPCM::valueAt(199));
    source.read(buffer.bytes());
    EXPECT_EQ(sample(0), MemoryPCM::valueAt(200));
    EXPECT_EQ(sample(99), MemoryPCM::valueAt(299));
    EXPECT_EQ(sample(100), 0);
    EXPECT_EQ(sample(199), 0);
    source.read(buffer.bytes());
    EXPECT_EQ(sample(0), 0);
    EXPECT_EQ(pcm->opened, 1);
}

TEST_F(PCMTrackSourceTest, ATrackWithoutSamplesIsSilentAndOpensNothing) {
    PCMTrackSource source = makeSource(0, 0);
    std::fill(buffer.bytes().begin(), buffer.bytes().end(), std::byte(1));
    source.read(buffer.bytes());
    EXPECT_EQ(sample(0), 0);
    EXPECT_EQ(sample(199), 0);
    EXPECT_EQ(pcm->opened, 0);
}

TEST_F(PCMTrackSourceTest, TheFileIsOpenedAtTheFirstReadingAndClosedOnRequest) {
    PCMTrackSource source = makeSource(150, 150);
    source.check();
    EXPECT_EQ(pcm->openNow, 0);
    source.read(buffer.bytes());
    EXPECT_EQ(pcm->openNow, 1);
    source.close();
    EXPECT_EQ(pcm->openNow, 0);
}

TEST_F(PCMTrackSourceTest, AnUnchangedFilePassesTheCheck) {
    PCMTrackSource source = makeSource(100, 100);
    EXPECT_EQ(failureOf([&] { source.check(); }), std::nullopt);
}

TEST_F(PCMTrackSourceTest, AFileThatIsGoneIsMissing) {
    PCMTrackSource source = makeSource(100, 100);
    std::filesystem::remove(path);
    EXPECT_EQ(failureOf([&] { source.check(); }), DRError::SourceMissing);
}

TEST_F(PCMTrackSourceTest, AFileThatMayNotBeReadIsMissing) {
    PCMTrackSource source = makeSource(100, 100);
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    const OrdinaryUser user;
    if (!user.isSet())
        GTEST_SKIP() << "cannot become an ordinary user";
    EXPECT_EQ(failureOf([&] { source.check(); }), DRError::SourceMissing);
}

TEST_F(PCMTrackSourceTest, AnotherFileUnderItsNameHasChanged) {
    PCMTrackSource source = makeSource(100, 100);
    changeFile();
    EXPECT_EQ(failureOf([&] { source.check(); }), DRError::SourceChanged);
}

TEST_F(PCMTrackSourceTest, AFileThatCannotBeOpenedIsUnreadable) {
    PCMTrackSource source = makeSource(100, 100);
    pcm->opens = false;
    EXPECT_EQ(failureOfReading(source), DRError::SourceUnreadable);
    EXPECT_EQ(info, path);
    pcm->problem = "out of order";
    EXPECT_EQ(failureOfReading(source), DRError::SourceUnreadable);
    EXPECT_EQ(info, path + ": out of order");
}

TEST_F(PCMTrackSourceTest, AReadErrorIsNamed) {
    PCMTrackSource source = makeSource(100, 0);
    pcm->failsAtTheEnd = true;
    pcm->problem = "out of order";
    EXPECT_EQ(failureOfReading(source), DRError::SourceUnreadable);
    EXPECT_EQ(info, path + ": out of order");
}

TEST_F(PCMTrackSourceTest, AFileThatCannotBeOpenedBecauseItChangedIsNamedAsChanged) {
    PCMTrackSource source = makeSource(100, 100);
    pcm->opens = false;
    changeFile();
    EXPECT_EQ(failureOfReading(source), DRError::SourceChanged);
}

TEST_F(PCMTrackSourceTest, AFileThatPlaysLessThanMeasuredIsUnreadable) {
    PCMTrackSource source = makeSource(100, 99);
    EXPECT_EQ(failureOfReading(source), DRError::SourceUnreadable);
    EXPECT_EQ(info, path + ": plays shorter than measured");
}

TEST_F(PCMTrackSourceTest, AFileThatPlaysLessBecauseItChangedIsNamedAsChanged) {
    PCMTrackSource source = makeSource(100, 99);
    changeFile();
    EXPECT_EQ(failureOfReading(source), DRError::SourceChanged);
}

TEST_F(PCMTrackSourceTest, AFileThatPlaysLongerThanMeasuredFailsTheBurn) {
    PCMTrackSource source = makeSource(100, 101);
    EXPECT_EQ(failureOfReading(source), DRError::SourceUnreadable);
}

TEST_F(PCMTrackSourceTest, AFileThatPlaysLongerBecauseItChangedIsNamedAsChanged) {
    PCMTrackSource source = makeSource(100, 101);
    changeFile();
    EXPECT_EQ(failureOfReading(source), DRError::SourceChanged);
}

TEST_F(PCMTrackSourceTest, AFileThatFailsBeyondItsMeasuredLengthIsWhole) {
    PCMTrackSource source = makeSource(100, 100);
    pcm->failsAtTheEnd = true;
    EXPECT_EQ(failureOfReading(source), std::nullopt);
}

TEST_F(PCMTrackSourceTest, ALayoutHasASourceForEachTrackInItsOrder) {
    const std::string other = folder.write("other.mp3");
    const auto second = std::make_shared<DRTrack>();
    second->path = other;
    makeSource(100, 100);
    const TrackSources sources = audioSources({track, second}, pcm);
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(failureOf([&] { sources[0]->check(); }), std::nullopt);
    EXPECT_EQ(failureOf([&] { sources[1]->check(); }), DRError::SourceChanged);
}

} // namespace
} // namespace quarner
