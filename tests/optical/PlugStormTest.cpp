// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "adapters/optical/OpticalRecorder.h"
#include "tests/recorder/BurnLog.h"
#include "tests/recorder/RawSound.h"
#include "tests/recorder/StepLoops.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

constexpr int events = 1000;

/// One drive burns, another one is plugged in and pulled out, and two threads ask for all of them.
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
        for (const char* name : {DRDeviceAppearedNotification, DRDeviceDisappearedNotification})
            center->addObserver(
                this,
                [this](const DRNotification& notification) {
                    told.push_back(notification);
                    ++heard;
                },
                name, nullptr);
    }

    void plugAndUnplug() {
        for (int i = 0; i < events / 2; ++i) {
            if (other)
                other->replug();
            else
                other = bed.plug({.product = "COMES AND GOES"});
            other->unplug();
            happened += 2;
            waitForListeners();
        }
    }

    /// The sockets of the test bed hold no more than ten events.
    void waitForListeners() {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (happened - heard > 6 && std::chrono::steady_clock::now() < end)
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

    std::shared_ptr<DRBurn> makeBurn(std::uint32_t sectors) {
        const std::string path = sources.write("sound", rawNoise(588ULL * sectors, 1));
        auto burn = recorder->burnForDevice(recorder->devices().at(0));
        burn->writeLayout({recorder->trackForAudioFile(path)});
        return burn;
    }

    OpticalBed bed;
    std::shared_ptr<EmulatedRecorder> writer = bed.plug({.product = "WRITER"});
    std::shared_ptr<EmulatedRecorder> other;
    TemporaryFolder sources;
    std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<OpticalRecorder> recorder = std::make_shared<OpticalRecorder>(
        loops, std::make_shared<RawSound>(), OpticalRecorderParts{.isUdevRunning = true});
    std::vector<DRNotification> told;
    std::atomic<bool> isOver = false;
    std::atomic<int> happened = 0;
    std::atomic<int> heard = 0;
    std::vector<std::thread> threads;
};

TEST_F(PlugStorm, LosesAndDoublesNothingAndDisturbsNoBurn) {
    listen();
    const auto burn = makeBurn(4000);
    const BurnLog log(loops->currentCenter(), burn.get());
    threads.emplace_back([this] { plugAndUnplug(); });
    threads.emplace_back([this] { ask(); });
    threads.emplace_back([this] { ask(); });
    ASSERT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_TRUE(log.isDone()) << log.info();
    EXPECT_GT(happened, 0) << "it was a storm";
    ASSERT_TRUE(loops->runUntil([&] { return told.size() >= events; }));
    end();
    loops->runUntil([&] { return told.size() > events; }, std::chrono::seconds(1));

    ASSERT_EQ(told.size(), events);
    for (std::size_t i = 0; i < told.size(); i += 2) {
        EXPECT_EQ(told[i].name, DRDeviceAppearedNotification);
        EXPECT_EQ(told[i + 1].name, DRDeviceDisappearedNotification);
        EXPECT_EQ(told[i].object, told[i + 1].object) << "the drive that came is the one that went";
    }
    ASSERT_EQ(recorder->devices().size(), 1U);
    EXPECT_EQ(recorder->devices()[0]->displayName(), "QUARNER WRITER");
    EXPECT_TRUE(writer->isReleased());
    EXPECT_EQ(other->openCount(), 0);
}

} // namespace
} // namespace quarner
