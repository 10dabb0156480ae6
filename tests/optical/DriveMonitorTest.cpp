// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/DriveMonitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "tests/support/optical/EventLoss.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {
namespace {

using ::testing::ElementsAre;

/// Records its calls.
class Notes : public DriveListener {
public:
    void driveIsThere(const DriveRecord& record) override { note("there " + record.node); }
    void driveIsGone(const std::string& sysPath) override { note("gone " + sysPath); }
    void mediaChanged(const std::string& sysPath) override { note("media " + sysPath); }
    void eventsWereLost() override { note("lost"); }

    /// Waits for `count` records and returns them.
    std::vector<std::string> first(std::size_t count) {
        std::unique_lock lock(_mutex);
        _noted.wait_for(lock, std::chrono::seconds(10), [&] { return _notes.size() >= count; });
        return _notes;
    }

private:
    void note(std::string text) {
        const std::lock_guard lock(_mutex);
        _notes.push_back(std::move(text));
        _noted.notify_all();
    }

    std::mutex _mutex;
    std::condition_variable _noted;
    std::vector<std::string> _notes;
};

struct DriveMonitorTest : ::testing::Test {
    UdevBed bed;
    Notes notes;
    DriveMonitor monitor;
};

TEST_F(DriveMonitorTest, DrivesThatComeAndGoAreToldInOrder) {
    ASSERT_TRUE(monitor.start(notes));
    const std::string drive = bed.plug("sr0", UdevBed::writer("V", "M"));
    bed.unplug(drive);
    EXPECT_THAT(notes.first(2), ElementsAre("there /dev/sr0", "gone " + drive));
}

TEST_F(DriveMonitorTest, ADiscThatIsPutInIsToldOfTheDrive) {
    const std::string drive = bed.plug("sr0", UdevBed::writer("V", "M"));
    ASSERT_TRUE(monitor.start(notes));
    bed.changeMedia(drive);
    EXPECT_THAT(notes.first(3), ElementsAre("there /dev/sr0", "there /dev/sr0", "media " + drive));
}

TEST_F(DriveMonitorTest, WhatHappenedBeforeTheStartIsToldAfterIt) {
    bed.plug("sr0", UdevBed::writer("V", "M"));
    ASSERT_TRUE(monitor.start(notes));
    EXPECT_THAT(notes.first(1), ElementsAre("there /dev/sr0"));
}

TEST_F(DriveMonitorTest, OtherBlockDevicesAreNotToldOf) {
    ASSERT_TRUE(monitor.start(notes));
    bed.plug("sda", {{"ID_VENDOR", "ATA"}});
    bed.plug("sr0", UdevBed::writer("V", "M"));
    EXPECT_THAT(notes.first(1), ElementsAre("there /dev/sr0"));
}

TEST_F(DriveMonitorTest, ADeviceThatUdevHasLookedAtAndCallsNoDriveIsNone) {
    ASSERT_TRUE(monitor.start(notes));
    bed.plug("sr0", {}, bed.addScsi("1:0:0:0", "5", "V", "SCANNER"));
    bed.plug("sr1", UdevBed::writer("V", "M"));
    EXPECT_THAT(notes.first(1), ElementsAre("there /dev/sr1"));
}

TEST_F(DriveMonitorTest, LostEventsAreToldOfAfterThoseThatCameThrough) {
    bed.plug("sr0", UdevBed::writer("V", "Lost"));
    bed.plug("sr1", UdevBed::writer("V", "M"));
    bed.plug("sr2", UdevBed::writer("V", "M"));
    loseNextEvent();
    ASSERT_TRUE(monitor.start(notes));
    EXPECT_THAT(notes.first(3), ElementsAre("there /dev/sr1", "there /dev/sr2", "lost"));
}

TEST_F(DriveMonitorTest, AfterALossItGoesOn) {
    bed.plug("sr0", UdevBed::writer("V", "Lost"));
    loseNextEvent();
    ASSERT_TRUE(monitor.start(notes));
    EXPECT_THAT(notes.first(1), ElementsAre("lost"));
    bed.plug("sr1", UdevBed::writer("V", "M"));
    EXPECT_THAT(notes.first(2), ElementsAre("lost", "there /dev/sr1"));
}

TEST_F(DriveMonitorTest, HasRoomForAThousandEventsThatComeAtOnce) {
    constexpr int roomOfAnEvent = 4096; // about a kilobyte of text, and what the kernel adds
    EXPECT_GE(wantedReceiveRoom(), 1000 * roomOfAnEvent);
}

} // namespace
} // namespace quarner
