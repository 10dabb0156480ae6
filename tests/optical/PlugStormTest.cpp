// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/optical/OpticalDrives.h"
#include "tests/recorder/BurnLog.h"
#include "tests/recorder/RawSound.h"
#include "tests/recorder/StepLoops.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

constexpr int events = 1000; ///< of plugging and unplugging
constexpr int roundsPerDisc = 10;
constexpr int told = events + events / 2 / roundsPerDisc;

constexpr std::uint64_t sectorsToBurn = 4000;

/// One drive burns while another one is plugged and unplugged, sometimes with another disc, and two
/// threads query both. The events are spread over the burn.
class PlugStorm : public testing::Test {
protected:
    ~PlugStorm() override { end(); }

    void end() {
        isOver = true;
        for (std::thread& thread : threads)
            thread.join();
        threads.clear();
    }

    void listen() {
        const auto center = loops->currentCenter();
        for (const char* name : {DRDeviceAppearedNotification, DRDeviceStatusChangedNotification,
                                 DRDeviceDisappearedNotification})
            center->addObserver(
                this,
                [this](const DRNotification& notification) {
                    if (notification.object == burningDrive)
                        return;
                    heard.push_back(notification);
                    ++heardCount;
                },
                name, nullptr);
    }

    void plugAndUnplug() {
        waitFor([&] { return isBurning.load(); });
        for (int i = 0; i < events / 2 && !isOver; ++i) {
            if (other)
                other->replug();
            else
                other = bed.plug({.product = "COMES AND GOES"});
            if (i % roundsPerDisc == 0) {
                other->insert(Medium::blankCDR());
                ++happened;
            }
            other->unplug();
            happened += 2;
            waitFor([&] { return happened - heardCount <= 6; }); // the test bed holds ten events
        }
    }

    /// Called on the reading thread: each part of the sound is read after a part of the events, and
    /// the last tenth after all of them.
    void holdBack(std::uint64_t pairs) {
        isBurning = true;
        const double part = static_cast<double>(pairs) / (588.0 * sectorsToBurn * 0.9);
        waitFor([&] { return happened >= std::min(1.0, part) * told; });
    }

    void waitFor(const std::function<bool()>& condition) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!isOver && !condition() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }

    void ask() {
        while (!isOver)
            for (const auto& drive : recorder->devices()) {
                drive->displayName();
                drive->status();
                drive->mediaIsBlank();
            }
    }

    std::shared_ptr<DRBurn> makeBurn() {
        const std::string path = sources.write("sound", rawNoise(588 * sectorsToBurn, 1));
        sound->setReadHook([this](const std::string&, std::uint64_t pairs) { holdBack(pairs); });
        auto burn = recorder->burnForDevice(burningDrive);
        burn->writeLayout({recorder->trackForAudioFile(path)});
        return burn;
    }

    void expectNothingLostOrDoubled() const {
        ASSERT_EQ(heard.size(), told);
        auto next = heard.begin();
        for (int i = 0; i < events / 2; ++i) {
            const auto drive = next->object;
            EXPECT_EQ((next++)->name, DRDeviceAppearedNotification);
            if (i % roundsPerDisc == 0) {
                EXPECT_EQ(next->object, drive);
                EXPECT_EQ((next++)->name, DRDeviceStatusChangedNotification);
            }
            EXPECT_EQ(next->object, drive) << "the drive that came is the one that went";
            EXPECT_EQ((next++)->name, DRDeviceDisappearedNotification);
        }
    }

    OpticalBed bed;
    std::shared_ptr<EmulatedRecorder> writer = bed.plug({.product = "WRITER"});
    std::shared_ptr<EmulatedRecorder> other;
    TemporaryFolder sources;
    std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();
    std::shared_ptr<EngineRecorder> recorder =
        std::make_shared<EngineRecorder>(RecorderServices{.runLoops = loops, .pcm = sound},
                                         DriveLists{std::make_shared<OpticalDrives>(
                                             loops, OpticalDrivesParts{.isUdevRunning = true})});
    const std::shared_ptr<DRDevice> burningDrive = recorder->devices().at(0);
    std::vector<DRNotification> heard;
    std::atomic<bool> isOver = false;
    std::atomic<bool> isBurning = false;
    std::atomic<int> happened = 0;
    std::atomic<int> heardCount = 0;
    std::vector<std::thread> threads;
};

TEST_F(PlugStorm, LosesAndDoublesNothingAndDisturbsNoBurn) {
    listen();
    const auto burn = makeBurn();
    BurnLog log(loops->currentCenter(), burn.get());
    std::map<std::string, int> happenedWhen;
    log.onRecord = [&](const Dictionary& record) {
        happenedWhen.emplace(BurnLog::stateOf(record), happened);
    };
    threads.emplace_back([this] { plugAndUnplug(); });
    threads.emplace_back([this] { ask(); });
    threads.emplace_back([this] { ask(); });
    ASSERT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_TRUE(log.isDone()) << log.info();
    EXPECT_LT(happenedWhen[DRStatusStateTrackWrite], told / 10) << "the burn was there first";
    EXPECT_EQ(happenedWhen[DRStatusStateTrackClose], told) << "and lasted to the end";
    loops->runUntil([&] { return heard.size() >= told; }, std::chrono::seconds(10));
    end();
    loops->runUntil([&] { return heard.size() > told; }, std::chrono::seconds(1));

    expectNothingLostOrDoubled();
    ASSERT_EQ(recorder->devices().size(), 1U);
    EXPECT_EQ(recorder->devices()[0]->displayName(), "QUARNER WRITER");
    EXPECT_TRUE(writer->isReleased());
    EXPECT_EQ(other->openCount(), 0);
}

} // namespace
} // namespace quarner
