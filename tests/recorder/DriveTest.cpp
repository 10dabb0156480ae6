// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "tests/recorder/RecorderTest.h"
#include "tests/support/MediaOf.h"

namespace quarner {
namespace {

using testing::ElementsAre;

/// The drives of the notifications with one name, in order.
class DriveLog {
public:
    DriveLog(std::shared_ptr<DRNotificationCenter> center, std::string name)
        : _center(std::move(center)), _name(std::move(name)) {
        _center->addObserver(
            this,
            [this](const DRNotification& notification) { objects.push_back(notification.object); },
            _name, nullptr);
    }
    ~DriveLog() { _center->removeObserver(this, _name, nullptr); }
    DriveLog(const DriveLog&) = delete;
    DriveLog& operator=(const DriveLog&) = delete;

    std::vector<std::shared_ptr<DRObject>> objects;

private:
    const std::shared_ptr<DRNotificationCenter> _center;
    const std::string _name;
};

class RecorderDrive : public Recorder {
protected:
    DRDevice& drive() { return *stage->drive(); }
};

TEST_P(RecorderDrive, WithABlankDiscTellsItsSpace) {
    EXPECT_TRUE(valueFor(drive().info(), DRDeviceCanWriteCDKey).asBool());
    EXPECT_TRUE(drive().mediaIsPresent());
    EXPECT_FALSE(drive().mediaIsTransitioning());
    EXPECT_TRUE(drive().mediaIsBlank());
    EXPECT_TRUE(drive().mediaIsAppendable());
    EXPECT_FALSE(drive().mediaIsErasable());
    EXPECT_FALSE(drive().mediaIsOverwritable());
    EXPECT_EQ(drive().mediaSpaceUsed(), DRMSF::msf());
    EXPECT_EQ(drive().mediaSpaceFree(), DRMSF::msfWithFrames(359'847));
    const Dictionary media = mediaOf(drive());
    EXPECT_EQ(valueFor(media, DRDeviceMediaTypeKey), Value(DRDeviceMediaTypeCDR));
    EXPECT_EQ(valueFor(media, DRDeviceMediaBlocksUsedKey).asUInt64(), 0U);
    EXPECT_EQ(valueFor(media, DRDeviceMediaBlocksFreeKey).asUInt64(), 359'847U);
}

TEST_P(RecorderDrive, ListsItsSpeedsInAscendingOrder) {
    const Dictionary media = mediaOf(drive());
    const Array* speeds = valueFor(media, DRDeviceBurnSpeedsKey).asArray();
    ASSERT_NE(speeds, nullptr);
    ASSERT_FALSE(speeds->empty());
    EXPECT_TRUE(std::is_sorted(speeds->begin(), speeds->end(), [](const Value& a, const Value& b) {
        return a.asDouble() < b.asDouble();
    }));
}

TEST_P(RecorderDrive, WithoutADiscKnowsNothingOfIt) {
    ASSERT_TRUE(drive().ejectMedia());
    EXPECT_FALSE(drive().ejectMedia());
    EXPECT_FALSE(drive().mediaIsPresent());
    EXPECT_FALSE(drive().mediaIsBlank());
    EXPECT_FALSE(drive().mediaIsAppendable());
    EXPECT_EQ(drive().mediaSpaceUsed(), std::nullopt);
    EXPECT_EQ(drive().mediaSpaceFree(), std::nullopt);
    EXPECT_TRUE(mediaOf(drive()).empty());
}

TEST_P(RecorderDrive, ThatIsPluggedInIsAnnouncedAndListedLast) {
    const DriveLog appeared(service()->currentRunLoopCenter(), DRDeviceAppearedNotification);
    stage->loops().runPending();
    stage->plugAnother();
    stage->loops().runPending();
    ASSERT_EQ(service()->devices().size(), 2U);
    EXPECT_EQ(service()->devices()[0], stage->drive());
    ASSERT_FALSE(appeared.objects.empty());
    EXPECT_EQ(appeared.objects.back(), service()->devices()[1]);
}

TEST_P(RecorderDrive, TellsOfEveryChangeOfItsDisc) {
    const DriveLog changes(service()->currentRunLoopCenter(), DRDeviceStatusChangedNotification);
    const auto countAfter = [&](const std::function<void()>& change) {
        const std::size_t before = changes.objects.size();
        change();
        stage->settle();
        return changes.objects.size() - before;
    };
    EXPECT_GE(countAfter([&] { drive().ejectMedia(); }), 1U);
    EXPECT_EQ(countAfter([&] { drive().ejectMedia(); }), 0U) << "nothing changed";
    EXPECT_GE(countAfter([&] { stage->insertBlank(); }), 1U);
    for (const auto& object : changes.objects)
        EXPECT_EQ(object, stage->drive());
}

TEST_P(RecorderDrive, RefusesToEjectAndASecondBurnWhileItBurns) {
    stage->loops().setInStep(true);
    const auto burn = makeBurn();
    const auto log = observe(burn);
    std::shared_ptr<DRBurn> second;
    std::unique_ptr<BurnLog> secondLog;
    bool isEjected = true;
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) != DRStatusStateTrackOpen)
            return;
        stage->loops().holdSender();
        isEjected = drive().ejectMedia();
        second = makeBurn();
        secondLog = observe(second);
        second->writeLayout(makeLayout({1000}));
    };
    burn->writeLayout(makeLayout({588 * 5000}));
    ASSERT_TRUE(stage->loops().runUntil([&] { return secondLog && secondLog->isOver(); }));
    stage->loops().setInStep(false);
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_FALSE(isEjected);
    EXPECT_EQ(secondLog->code(), codeOf(DRError::DeviceBusy)) << secondLog->info();
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_P(RecorderDrive, ThatIsUnpluggedInMidBurnFailsTheBurn) {
    stage->loops().setInStep(true);
    const auto burn = makeBurn();
    const auto log = observe(burn);
    const DriveLog gone(service()->currentRunLoopCenter(), DRDeviceDisappearedNotification);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateTrackWrite && gone.objects.empty())
            stage->unplug();
    };
    const auto drive = stage->drive();
    burn->writeLayout(makeLayout({588 * 1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished)) << log->info();
    EXPECT_TRUE(stage->loops().runUntil([&] { return !gone.objects.empty(); }));
    EXPECT_THAT(gone.objects, ElementsAre(drive));
    EXPECT_FALSE(drive->displayName().empty());
    EXPECT_TRUE(service()->devices().empty());
}

class RecorderWritingDrive : public WritingRecorder {
protected:
    void burnOneSource() {
        const auto burn = makeBurn();
        const auto log = observe(burn);
        burn->writeLayout(makeLayout({588 * 400}));
        ASSERT_TRUE(runToEnd(*log));
        ASSERT_TRUE(log->isDone()) << log->info();
    }
    DRDevice& drive() { return *stage->drive(); }
};

TEST_P(RecorderWritingDrive, WithAWrittenDiscTellsWhatIsOnItAndTakesNoMore) {
    burnOneSource();
    EXPECT_TRUE(drive().mediaIsPresent());
    EXPECT_FALSE(drive().mediaIsBlank());
    EXPECT_FALSE(drive().mediaIsAppendable());
    EXPECT_FALSE(drive().mediaIsOverwritable());
    EXPECT_EQ(drive().mediaSpaceUsed(),
              DRMSF::msfWithFrames(static_cast<std::uint32_t>(writing.blocksOnDisc())));
    EXPECT_EQ(drive().mediaSpaceFree(), DRMSF::msf());
    EXPECT_EQ(valueFor(mediaOf(drive()), DRDeviceMediaBlocksUsedKey).asUInt64(),
              writing.blocksOnDisc());
    EXPECT_EQ(valueFor(mediaOf(drive()), DRDeviceMediaBlocksFreeKey).asUInt64(), 0U);
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_EQ(log->code(), codeOf(DRError::MediaNotWritable));
}

TEST_P(RecorderWritingDrive, TakesANewBlankAfterTheWrittenDiscIsOut) {
    burnOneSource();
    ASSERT_TRUE(drive().ejectMedia());
    stage->insertBlank();
    EXPECT_TRUE(drive().mediaIsBlank());
    burnOneSource();
    EXPECT_FALSE(drive().mediaIsBlank());
}

TEST_P(RecorderWritingDrive, TellsThatItsDiscWasWritten) {
    const DriveLog changes(service()->currentRunLoopCenter(), DRDeviceStatusChangedNotification);
    burnOneSource();
    stage->settle();
    EXPECT_THAT(changes.objects, testing::Contains(stage->drive()));
}

TEST_P(RecorderWritingDrive, ThatIsUnpluggedHasNoDisc) {
    const auto drive = stage->drive();
    stage->unplug();
    stage->settle();
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST_P(RecorderWritingDrive, IsWrittenWhenTheBurnSaysDone) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    bool wasBlank = true;
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateDone)
            wasBlank = drive().mediaIsBlank();
    };
    burn->writeLayout(makeLayout({1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_FALSE(wasBlank);
}

INSTANTIATE_RECORDER_SUITE(RecorderDrive);
INSTANTIATE_WRITING_SUITE(RecorderWritingDrive);

} // namespace
} // namespace quarner
