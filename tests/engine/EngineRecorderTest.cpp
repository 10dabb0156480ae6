// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineRecorder.h"

#include <gmock/gmock.h>

#include <condition_variable>

#include "adapters/posix/FileStamps.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tests/engine/MemoryDrive.h"
#include "tests/engine/MemoryPCM.h"
#include "tests/support/BurnLog.h"
#include "tests/support/StepLoops.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Data discs of zeros: as many blocks as the folder has files.
class ZeroDiscs : public DataDiscService {
public:
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override {
        auto track = std::make_shared<DRTrack>();
        track->rootFolder = std::move(folder);
        track->setEstimateLength(track->rootFolder->children().size());
        return track;
    }
    DiscContent contentOf(const DRTrack& track, const StopSignal&) override {
        DiscContent content;
        content.plan = {.sectorSize = dataBlockSize,
                        .tracks = {{.length = std::uint32_t(track.estimateLength())}}};
        content.sources.push_back(std::make_unique<CountingSource>(0));
        return content;
    }
};

/// One drive that it unplugs at its end, like every list.
class OneDrive : public DriveList {
public:
    OneDrive(std::shared_ptr<RunLoops> loops, std::shared_ptr<MemoryDrive> drive)
        : DriveList(std::move(loops)), _drive(std::move(drive)) {}
    ~OneDrive() override { _drive->unplug(); }
    std::vector<std::shared_ptr<DRDevice>> devices() override { return {_drive}; }

private:
    const std::shared_ptr<MemoryDrive> _drive;
};

class EngineRecorderTest : public testing::Test {
protected:
    void makeRecorder(std::shared_ptr<DataDiscService> dataDiscs) {
        drive = std::make_shared<MemoryDrive>(loops);
        recorder = std::make_unique<EngineRecorder>(
            RecorderServices{loops, pcm, std::move(dataDiscs), [] { return Clock::result_type(); }},
            DriveLists{std::make_shared<OneDrive>(loops, drive),
                       std::make_shared<OneDrive>(loops, otherDrive)});
    }
    void SetUp() override {
        pcm->pairs = 588 * 300;
        makeRecorder(std::make_shared<ZeroDiscs>());
    }
    std::shared_ptr<DRTrack> audioTrack() { return recorder->trackForAudioFile(song); }
    std::shared_ptr<DRTrack> dataTrack() {
        const auto root = std::make_shared<DRFolder>("Disc");
        root->addChild(std::make_shared<DRFile>(song));
        return recorder->trackForRootFolder(root);
    }
    /// Burns a layout. Returns the code of its failure, or 0.
    std::uint32_t burn(const DRLayout& layout) {
        const auto made = recorder->burnForDevice(drive);
        const BurnLog log(loops->currentCenter(), made.get());
        made->writeLayout(layout);
        EXPECT_TRUE(loops->runUntil([&] { return log.isOver(); }));
        return log.code();
    }

    TemporaryFolder folder;
    std::string song = folder.write("song.mp3", "song");
    std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<MemoryPCM> pcm = std::make_shared<MemoryPCM>();
    std::shared_ptr<MemoryDrive> drive;
    const std::shared_ptr<MemoryDrive> otherDrive = std::make_shared<MemoryDrive>(loops);
    std::unique_ptr<EngineRecorder> recorder;
};

TEST_F(EngineRecorderTest, TheDrivesAreThoseOfAllListsInTheirOrder) {
    EXPECT_THAT(recorder->devices(), ElementsAre(drive, otherDrive));
}

TEST_F(EngineRecorderTest, ATrackHasThePathTheStampAndTheExactLengthOfItsFile) {
    pcm->pairs = 588 * 400 + 1;
    const auto track = audioTrack();
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(track->path, song);
    EXPECT_EQ(track->stamp, stampOfFile(song));
    EXPECT_EQ(track->sampleCount, 588U * 400 + 1);
    EXPECT_EQ(track->length().totalFrames(), 401U);
    EXPECT_EQ(track->preGap().totalFrames(), 0U);
}

TEST_F(EngineRecorderTest, AFileWithoutSoundGivesNoTrack) {
    EXPECT_EQ(recorder->trackForAudioFile(folder.file("none.mp3")), nullptr);
    pcm->opens = false;
    EXPECT_EQ(audioTrack(), nullptr);
    pcm->opens = true;
    pcm->pairs = 0;
    EXPECT_EQ(audioTrack(), nullptr);
    pcm->pairs = 1;
    EXPECT_NE(audioTrack(), nullptr);
}

TEST_F(EngineRecorderTest, MakingATrackEndsWhenItIsNotContinued) {
    EXPECT_NE(recorder->trackForAudioFileWhile(song, [] { return true; }), nullptr);
    EXPECT_EQ(recorder->trackForAudioFileWhile(song, [] { return false; }), nullptr);
}

TEST_F(EngineRecorderTest, AFileNodeKnowsItsPathAndStamp) {
    const auto node = recorder->fileWithPath(song);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->sourcePath(), song);
    EXPECT_EQ(node->stamp(), stampOfFile(song));
    EXPECT_EQ(recorder->fileWithPath(folder.file("none")), nullptr);
    EXPECT_EQ(recorder->fileWithPath(folder.path()), nullptr);
}

TEST_F(EngineRecorderTest, ARecorderWithoutDataDiscsMakesNoDataTrack) {
    EXPECT_NE(dataTrack(), nullptr);
    makeRecorder(nullptr);
    EXPECT_EQ(dataTrack(), nullptr);
}

TEST_F(EngineRecorderTest, ADriveThatTakesNoSectorsGivesABurnThatFails) {
    drive = nullptr;
    EXPECT_EQ(burn({audioTrack()}), codeOf(DRError::DeviceVanished));
}

TEST_F(EngineRecorderTest, AnAudioLayoutIsBurntAsAudio) {
    EXPECT_EQ(burn({audioTrack(), audioTrack()}), 0U);
    EXPECT_EQ(drive->disc.sectorSize, audioSectorSize);
    EXPECT_EQ(drive->disc.released, 600U);
    EXPECT_EQ(drive->disc.bytes[0], std::byte(MemoryPCM::valueAt(0)));
}

TEST_F(EngineRecorderTest, ADataTrackIsBurntAsData) {
    EXPECT_EQ(burn({dataTrack()}), 0U);
    EXPECT_EQ(drive->disc.sectorSize, dataBlockSize);
    EXPECT_EQ(drive->disc.released, 1U);
}

TEST_F(EngineRecorderTest, ADataTrackStandsAlone) {
    EXPECT_EQ(burn({dataTrack(), audioTrack()}), codeOf(DRError::WrongMedia));
    EXPECT_EQ(burn({audioTrack(), dataTrack()}), codeOf(DRError::WrongMedia));
    EXPECT_EQ(burn({dataTrack(), dataTrack()}), codeOf(DRError::WrongMedia));
    EXPECT_THAT(drive->disc.calls, IsEmpty());
}

TEST_F(EngineRecorderTest, ARecorderWithoutDataDiscsBurnsNone) {
    const auto track = dataTrack();
    makeRecorder(nullptr);
    EXPECT_EQ(burn({track}), codeOf(DRError::WrongMedia));
}

TEST_F(EngineRecorderTest, ANullTrackIsAnInternalError) {
    EXPECT_EQ(burn({nullptr}), codeOf(DRError::Internal));
}

TEST_F(EngineRecorderTest, TheSettingsOfABurnReachTheDrive) {
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    made->setProperties({{DRBurnVerifyDiscKey, false}, {DRBurnRequestedSpeedKey, 300}});
    made->writeLayout({audioTrack()});
    EXPECT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_FALSE(drive->disc.settings.verify);
    EXPECT_EQ(drive->disc.settings.requestedSpeed, 300.0);
}

TEST_F(EngineRecorderTest, ABurnTakesOneLayout) {
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    made->writeLayout({audioTrack()});
    made->writeLayout({audioTrack(), audioTrack()});
    EXPECT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    recorder.reset();
    loops->runPending();
    EXPECT_EQ(log.ends(), 1U);
    EXPECT_EQ(drive->disc.released, 300U);
}

TEST_F(EngineRecorderTest, AnAbortBeforeTheStartHasNoEffect) {
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    made->abort();
    made->writeLayout({audioTrack()});
    EXPECT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_TRUE(log.isDone());
}

TEST_F(EngineRecorderTest, AnAbortEndsABurnThatIsUnderWay) {
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    drive->disc.onCall = [&](const std::string& name) {
        if (name == "openSession")
            made->abort();
    };
    made->writeLayout({audioTrack()});
    EXPECT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled));
}

TEST_F(EngineRecorderTest, TheEndOfTheRecorderCancelsItsBurnsAndWaitsForThem) {
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
    drive->disc.onCall = [&](const std::string& name) {
        const std::lock_guard lock(mutex);
        isOpen = isOpen || name == "openSession";
        changed.notify_all();
    };
    pcm->pairs = std::uint64_t(588) * 300'000; // minutes, were it not cancelled
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    made->writeLayout({audioTrack()});
    {
        std::unique_lock lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, 1min, [&] { return isOpen; }));
    }
    recorder.reset();
    loops->runPending();
    EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled));
}

TEST_F(EngineRecorderTest, ABurnOfARecorderThatIsGoneTellsNothing) {
    const auto made = recorder->burnForDevice(drive);
    const auto center = loops->currentCenter();
    const BurnLog log(center, made.get());
    const DRLayout layout = {audioTrack()};
    recorder.reset();
    loops.reset();
    made->writeLayout(layout);
    EXPECT_FALSE(center->deliverOne());
}

TEST_F(EngineRecorderTest, ABurnThatIsStartedAfterTheEndOfTheRecorderFails) {
    const auto made = recorder->burnForDevice(drive);
    const BurnLog log(loops->currentCenter(), made.get());
    const DRLayout layout = {audioTrack()};
    recorder.reset();
    made->writeLayout(layout);
    loops->runPending();
    EXPECT_EQ(log.ends(), 1U);
    EXPECT_FALSE(log.isDone());
    EXPECT_THAT(drive->disc.calls, IsEmpty());
}

} // namespace
} // namespace quarner
