// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

constexpr int events = 1000; ///< of plugging and unplugging
constexpr int roundsPerDisc = 10;
constexpr int told = events + events / 2 / roundsPerDisc;

constexpr std::uint32_t sectorsToBurn = 4000;

/// One drive burns while another one is plugged and unplugged, sometimes with another disc, and two
/// threads query both. The events are spread over the burn.
class PlugStorm : public testing::Test, public OpticalStage {
protected:
    PlugStorm() : OpticalStage({.product = "WRITER"}, Listing::ByUdev) {}
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
                    if (notification.object == drive)
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
            for (const auto& listed : service->devices()) {
                listed->displayName();
                listed->status();
                listed->mediaIsBlank();
            }
    }

    std::shared_ptr<DRBurn> startBurn() {
        sound->setReadHook([this](const std::string&, std::uint64_t pairs) { holdBack(pairs); });
        auto burning = makeBurn();
        burning->writeLayout(audio({sectorsToBurn}));
        return burning;
    }

    void expectNothingLostOrDoubled() const {
        ASSERT_EQ(heard.size(), told);
        auto next = heard.begin();
        for (int i = 0; i < events / 2; ++i) {
            const auto plugged = next->object;
            EXPECT_EQ((next++)->name, DRDeviceAppearedNotification);
            if (i % roundsPerDisc == 0) {
                EXPECT_EQ(next->object, plugged);
                EXPECT_EQ((next++)->name, DRDeviceStatusChangedNotification);
            }
            EXPECT_EQ(next->object, plugged) << "the drive that came is the one that went";
            EXPECT_EQ((next++)->name, DRDeviceDisappearedNotification);
        }
    }

    std::shared_ptr<EmulatedRecorder> other;
    std::vector<DRNotification> heard;
    std::atomic<bool> isOver = false;
    std::atomic<bool> isBurning = false;
    std::atomic<int> happened = 0;
    std::atomic<int> heardCount = 0;
    std::vector<std::thread> threads;
};

TEST_F(PlugStorm, LosesAndDoublesNothingAndDisturbsNoBurn) {
    listen();
    const auto burning = startBurn();
    const auto log = observe(burning);
    std::map<std::string, int> happenedWhen;
    log->onRecord = [&](const Dictionary& record) {
        happenedWhen.emplace(BurnLog::stateOf(record), happened);
    };
    threads.emplace_back([this] { plugAndUnplug(); });
    threads.emplace_back([this] { ask(); });
    threads.emplace_back([this] { ask(); });
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_LT(happenedWhen[DRStatusStateTrackWrite], told / 10) << "the burn was there first";
    EXPECT_EQ(happenedWhen[DRStatusStateTrackClose], told) << "and lasted to the end";
    loops->runUntil([&] { return heard.size() >= told; }, std::chrono::seconds(10));
    end();
    loops->runUntil([&] { return heard.size() > told; }, std::chrono::seconds(1));

    expectNothingLostOrDoubled();
    ASSERT_EQ(service->devices().size(), 1U);
    EXPECT_EQ(service->devices()[0]->displayName(), "QUARNER WRITER");
    EXPECT_TRUE(recorder->isReleased());
    EXPECT_EQ(other->openCount(), 0);
}

} // namespace
} // namespace quarner
