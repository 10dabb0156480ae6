// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quarner/scripted.h>

#include "quarner/platform/Platform.h"
#include "quarner/quarner.h"
#include "tests/support/RecordingDeviceDelegate.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Records registrations and removals.
class KeepingCenter : public DRNotificationCenter {
public:
    void addObserver(const void*, Handler, std::string_view name, const DRObject* object) override {
        log.push_back("add " + std::string(name) + (object != nullptr ? " of one" : ""));
    }
    void removeObserver(const void*, std::string_view name, const DRObject* object) override {
        log.push_back("remove " + std::string(name) + (object != nullptr ? " of one" : ""));
    }
    std::vector<std::string> log;
};

/// A recording service with drives only.
class DrivesAlone : public RecordingService {
public:
    explicit DrivesAlone(std::vector<std::shared_ptr<DRDevice>> drives)
        : _drives(std::move(drives)) {}
    std::vector<std::shared_ptr<DRDevice>> devices() override { return _drives; }
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice>) override { return nullptr; }
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string&) override { return nullptr; }
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override { return center; }
    std::shared_ptr<KeepingCenter> center = std::make_shared<KeepingCenter>();

private:
    std::vector<std::shared_ptr<DRDevice>> _drives;
};

class QuarnerDeviceTest : public ::testing::Test {
protected:
    /// A handle that reports to the delegate.
    std::unique_ptr<QuarnerDevice> bind(const std::string& name) {
        auto handle = std::make_unique<QuarnerDevice>(name);
        handle->setDelegate(&delegate);
        return handle;
    }
    void deliver() { ASSERT_TRUE(platform.runUntilIdle()); }

    ScriptedPlatform platform;
    RecordingDeviceDelegate delegate;
};

TEST_F(QuarnerDeviceTest, WithoutDrivesTheListIsEmpty) {
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
}

TEST_F(QuarnerDeviceTest, AllDrivesAreListedInOrderWhateverTheyCan) {
    platform.addDrive({.name = "B"});
    platform.addDrive({.name = "A", .canWriteCD = false});
    platform.addDrive({.name = "C", .disc = DiscScript{}});
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre("B", "A", "C"));
}

TEST_F(QuarnerDeviceTest, TwoDrivesOfOneNameAreListedTwice) {
    platform.addDrive({.name = "Twin"});
    platform.addDrive({.name = "Twin"});
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre("Twin", "Twin"));
}

TEST_F(QuarnerDeviceTest, AHandleWithoutADriveGivesNeutralAnswers) {
    platform.addDrive({.name = "Writer", .currentSpeed = 75.0, .disc = DiscScript{}});
    QuarnerDevice handle("writer"); // names are compared exactly
    EXPECT_FALSE(handle.isDiscInDevice());
    EXPECT_FALSE(handle.cdBurnEnabled());
    EXPECT_FALSE(handle.isCheckingDisc());
    EXPECT_EQ(handle.currentBurnSpeed(), 0.0F);
    EXPECT_EQ(handle.deviceName(), std::nullopt);
    EXPECT_EQ(handle.info(), std::nullopt);
    EXPECT_EQ(handle.status(), std::nullopt);
    EXPECT_EQ(handle.device(), nullptr);
    EXPECT_EQ(handle.delegate(), nullptr);
    handle.eject();
    EXPECT_EQ(platform.calls(ServiceCall::EjectMedia), 0U);
}

TEST_F(QuarnerDeviceTest, AHandleWithoutADriveStillHearsDrivesComeAndGo) {
    const auto handle = bind("none");
    const auto drive = platform.plug({.name = "Writer", .disc = DiscScript{}});
    drive->reportChange();
    platform.unplug(drive);
    deliver();
    EXPECT_THAT(delegate.calls,
                ElementsAre("deviceDidAppeared(Writer)", "deviceDidDisappeared(Writer)"));
}

TEST_F(QuarnerDeviceTest, AHandleAnswersWhatItsDriveSays) {
    const auto drive = platform.addDrive(
        {.name = "Writer", .currentSpeed = 75.5, .isTransitioning = true, .disc = DiscScript{}});
    QuarnerDevice handle("Writer");
    EXPECT_EQ(handle.device(), drive);
    EXPECT_EQ(handle.deviceName(), "Writer");
    EXPECT_TRUE(handle.cdBurnEnabled());
    EXPECT_TRUE(handle.isDiscInDevice());
    EXPECT_TRUE(handle.isCheckingDisc());
    EXPECT_EQ(handle.currentBurnSpeed(), 75.5F);
    EXPECT_EQ(handle.info(), drive->info());
    EXPECT_EQ(handle.status(), drive->status());
}

TEST_F(QuarnerDeviceTest, EveryQueryAsksTheDriveAfresh) {
    const auto drive = platform.addDrive({.name = "Writer"});
    QuarnerDevice handle("Writer");
    EXPECT_FALSE(handle.isDiscInDevice());
    drive->insert({});
    EXPECT_TRUE(handle.isDiscInDevice());
    drive->change([](DriveScript& script) { script.name = "Renamed"; });
    EXPECT_EQ(handle.deviceName(), "Renamed");
}

TEST_F(QuarnerDeviceTest, MissingEntriesReadAsNeutral) {
    platform.addDrive({.name = "Writer", .canWriteCD = std::nullopt});
    QuarnerDevice handle("Writer");
    EXPECT_FALSE(handle.cdBurnEnabled());
    EXPECT_EQ(handle.currentBurnSpeed(), 0.0F);
    EXPECT_EQ(handle.info(), Dictionary());
}

TEST_F(QuarnerDeviceTest, AReaderCannotBurn) {
    platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_FALSE(QuarnerDevice("Reader").cdBurnEnabled());
}

TEST_F(QuarnerDeviceTest, EjectPutsTheDiscOutAndIgnoresARefusal) {
    const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    QuarnerDevice handle("Writer");
    platform.fail(ServiceCall::EjectMedia);
    handle.eject();
    EXPECT_TRUE(handle.isDiscInDevice());
    platform.repair(ServiceCall::EjectMedia);
    handle.eject();
    EXPECT_FALSE(handle.isDiscInDevice());
    EXPECT_EQ(platform.calls(ServiceCall::EjectMedia), 2U);
}

TEST_F(QuarnerDeviceTest, OfTwoDrivesOfOneNameTheLaterIsBoundAndItAloneIsHeard) {
    const auto earlier = platform.addDrive({.name = "Twin"});
    const auto later = platform.addDrive({.name = "Twin"});
    platform.addDrive({.name = "Other"});
    const auto handle = bind("Twin");
    EXPECT_EQ(handle->device(), later);
    earlier->reportChange();
    deliver();
    EXPECT_THAT(delegate.calls, IsEmpty());
    later->reportChange();
    deliver();
    EXPECT_THAT(delegate.calls, ElementsAre("deviceStatusDidChanged"));
}

TEST_F(QuarnerDeviceTest, BothDrivesOfOneNameAreObservedUntilTheHandleGoes) {
    const auto recording = std::make_shared<DrivesAlone>(std::vector<std::shared_ptr<DRDevice>>{
        platform.addDrive({.name = "Twin"}), platform.addDrive({.name = "Twin"})});
    installPlatform({.recording = recording});
    { const QuarnerDevice handle("Twin"); }
    EXPECT_THAT(recording->center->log, ElementsAre("add DRDeviceStatusChangedNotification of one",
                                                    "add DRDeviceStatusChangedNotification of one",
                                                    "add DRDeviceDisappearedNotification",
                                                    "add DRDeviceAppearedNotification",
                                                    "remove DRDeviceStatusChangedNotification",
                                                    "remove DRDeviceDisappearedNotification",
                                                    "remove DRDeviceAppearedNotification"));
    installPlatform({});
}

TEST_F(QuarnerDeviceTest, AStatusNotificationOfAnotherSenderIsDropped) {
    platform.addDrive({.name = "Writer"});
    const auto other = platform.addDrive({.name = "Other"});
    const auto handle = bind("Writer");
    other->reportChange();
    platform.post({DRDeviceStatusChangedNotification, nullptr, {}});
    deliver();
    handle->deviceStatusDidChanged({DRDeviceStatusChangedNotification, other, {}});
    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(QuarnerDeviceTest, EveryChangeOfTheBoundDriveIsReported) {
    const auto drive = platform.addDrive({.name = "Writer"});
    const auto handle = bind("Writer");
    drive->insert({});
    drive->change([](DriveScript& script) { script.isTransitioning = true; });
    drive->ejectMedia();
    deliver();
    EXPECT_THAT(delegate.calls, ElementsAre("deviceStatusDidChanged", "deviceStatusDidChanged",
                                            "deviceStatusDidChanged"));
}

TEST_F(QuarnerDeviceTest, OtherDrivesAreForwardedWithTheirOwnNames) {
    platform.addDrive({.name = "Writer"});
    const auto handle = bind("Writer");
    const auto other = platform.plug({.name = "Other"});
    platform.unplug(other);
    deliver();
    EXPECT_THAT(delegate.calls,
                ElementsAre("deviceDidAppeared(Other)", "deviceDidDisappeared(Other)"));
}

TEST_F(QuarnerDeviceTest, AfterItsDriveIsGoneAHandleKeepsItAndIsNotBoundAnew) {
    const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    const auto handle = bind("Writer");
    platform.unplug(drive);
    deliver();
    EXPECT_THAT(delegate.calls, ElementsAre("deviceDidDisappeared(Writer)"));
    EXPECT_EQ(handle->deviceName(), "Writer");
    EXPECT_TRUE(handle->cdBurnEnabled());
    EXPECT_FALSE(handle->isDiscInDevice());

    const auto back = platform.plug({.name = "Writer"});
    back->reportChange();
    deliver();
    EXPECT_EQ(handle->device(), drive);
    EXPECT_EQ(QuarnerDevice("Writer").device(), back);
    EXPECT_THAT(delegate.calls,
                ElementsAre("deviceDidDisappeared(Writer)", "deviceDidAppeared(Writer)"));
}

TEST_F(QuarnerDeviceTest, ADelegateThatWantsOnlyArrivalsHearsOnlyThem) {
    class Arrivals : public QuarnerDeviceDelegate {
    public:
        void deviceDidAppeared(const std::string& deviceName) override {
            names.push_back(deviceName);
        }
        std::vector<std::string> names;
    } arrivals;
    const auto drive = platform.addDrive({.name = "Writer"});
    QuarnerDevice handle("Writer");
    handle.setDelegate(&arrivals);
    drive->reportChange();
    platform.plug({.name = "New"});
    platform.unplug(drive);
    deliver();
    EXPECT_THAT(arrivals.names, ElementsAre("New"));
}

TEST_F(QuarnerDeviceTest, WithoutADelegateNothingIsForwarded) {
    const auto drive = platform.addDrive({.name = "Writer"});
    const auto handle = bind("Writer");
    handle->setDelegate(nullptr);
    drive->reportChange();
    platform.unplug(drive);
    platform.plug({.name = "New"});
    deliver();
    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(QuarnerDeviceTest, ANotificationWithoutADriveIsDropped) {
    const auto handle = bind("none");
    platform.post({DRDeviceAppearedNotification, nullptr, {}});
    platform.post({DRDeviceDisappearedNotification, nullptr, {}});
    deliver();
    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(QuarnerDeviceTest, AHandleThatIsGoneHearsNoMoreNotEvenWhatWasSentBefore) {
    const auto drive = platform.addDrive({.name = "Writer"});
    auto handle = bind("Writer");
    drive->reportChange();
    platform.plug({.name = "New"});
    handle.reset();
    deliver();
    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(QuarnerDeviceTest, AHandleMayBeDestroyedInACallback) {
    const auto drive = platform.addDrive({.name = "Writer"});
    auto handle = bind("Writer");
    delegate.whenCalled = [&] { handle.reset(); };
    drive->reportChange();
    drive->reportChange();
    deliver();
    EXPECT_THAT(delegate.calls, ElementsAre("deviceStatusDidChanged"));
}

TEST_F(QuarnerDeviceTest, TwoHandlesOnOneDriveBothHear) {
    const auto drive = platform.addDrive({.name = "Writer"});
    const auto first = bind("Writer");
    auto second = bind("Writer");
    drive->reportChange();
    deliver();
    EXPECT_EQ(delegate.calls.size(), 2U);
    second.reset();
    drive->reportChange();
    deliver();
    EXPECT_EQ(delegate.calls.size(), 3U);
}

} // namespace
} // namespace quarner::testing
