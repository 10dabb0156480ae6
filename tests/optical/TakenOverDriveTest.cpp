// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <thread>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/optical/OpticalDrives.h"
#include "tests/optical/DeviceNotes.h"
#include "tests/support/BurnLog.h"
#include "tests/support/RawSound.h"
#include "tests/support/StepLoops.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

using testing::ElementsAre;

/// Responding drives, and the updates of their list from udev.
class TakenOverDrive : public testing::Test {
protected:
    void start(bool isUdevRunning) {
        drives = std::make_shared<OpticalDrives>(
            loops,
            OpticalDrivesParts{.clock = [this] { return time; }, .isUdevRunning = isUdevRunning});
        recorder = std::make_shared<EngineRecorder>(
            RecorderServices{.runLoops = loops, .pcm = sound}, DriveLists{drives});
        notes = std::make_unique<DeviceNotes>(loops->currentCenter());
    }
    bool hearNotes(std::size_t count) {
        return loops->runUntil([&] { return notes->all().size() >= count; });
    }
    /// Makes udev report another name for the first drive.
    void rename(const std::string& product) {
        bed.overrideProperties(
            0, {{"ID_CDROM", "1"}, {"ID_VENDOR", "QUARNER"}, {"ID_MODEL", product}});
    }
    std::string name() { return recorder->devices().at(0)->displayName(); }

    OpticalBed bed;
    TemporaryFolder sources;
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
    const std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();
    const std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<OpticalDrives> drives;
    std::shared_ptr<EngineRecorder> recorder;
    std::unique_ptr<DeviceNotes> notes;
};

TEST_F(TakenOverDrive, StaysWhileItBurnsAndIsReplacedAfterwards) {
    bed.plug({.product = "WRITER", .closesTray = false}); // it sends no event at the end
    start(true);
    const std::string path = sources.write("sound", rawNoise(588ULL * 2000, 1));
    const auto burn = recorder->burnForDevice(recorder->devices().at(0));
    const BurnLog log(loops->currentCenter(), burn.get());
    sound->setReadHook([&](const std::string&, std::uint64_t pairs) {
        if (pairs < 588ULL * 1000 || recorder->devices().size() > 1)
            return;
        rename("BETTER");
        bed.plug({.product = "MARKER"});
        while (recorder->devices().size() == 1) // reported after the earlier events
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    burn->writeLayout({recorder->trackForAudioFile(path)});
    ASSERT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_TRUE(log.isDone()) << log.info();
    EXPECT_EQ(name(), "QUARNER WRITER");
    EXPECT_THAT(notes->all(), testing::Not(testing::Contains("- QUARNER WRITER")));

    const std::size_t heard = notes->all().size();
    rename("BETTER");
    ASSERT_TRUE(hearNotes(heard + 2));
    EXPECT_THAT(
        std::vector(notes->all().begin() + static_cast<std::ptrdiff_t>(heard), notes->all().end()),
        ElementsAre("- QUARNER WRITER", "+ QUARNER BETTER"));
    EXPECT_EQ(name(), "QUARNER BETTER");
}

TEST_F(TakenOverDrive, ThatIsTheFirstOneHeardOfIsNotAskedAgainAfterAWhile) {
    start(false);
    const auto writer = bed.plug();
    ASSERT_TRUE(hearNotes(1));
    EXPECT_TRUE(drives->receivesEvents());
    const auto drive = recorder->devices().at(0);
    EXPECT_TRUE(drive->mediaIsPresent());
    const std::size_t asked = writer->commands().size();
    time += 2 * OpticalDrive::keptFor;
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_EQ(writer->commands().size(), asked) << "its changes are reported";
}

} // namespace
} // namespace quarner
