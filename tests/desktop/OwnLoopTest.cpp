// SPDX-License-Identifier: LGPL-2.1-or-later
#include <atomic>
#include <filesystem>
#include <thread>

#include "quarner/platform/DRErrors.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/HandMadeLoop.h"
#include "tests/support/RecordingDeviceDelegate.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

/// A host whose main loop is its own. Nobody turns a GMainContext.
class DesktopOwnLoop : public ::testing::Test {
protected:
    DesktopOwnLoop() {
        installDesktopPlatform(
            {.postToMain = [this](std::function<void()> work) { loop.post(std::move(work)); }});
        burner->setDelegate(&delegate);
    }
    ~DesktopOwnLoop() override { uninstallDesktopPlatform(); }

    std::string put(const std::string& song, const std::string& name) const {
        std::filesystem::copy_file(TEST_SONGS + song, folder.file(name));
        return folder.file(name);
    }
    bool turnUntilCalled(const std::string& call) {
        return loop.turnUntil([&] { return delegate.count(call) > 0; });
    }
    std::thread::id threadOf(const std::string& call) const {
        for (const auto& each : delegate.callsWithThreads())
            if (each.text == call)
                return each.thread;
        return {};
    }

    OpticalBed machine; // before the platform, which lists its drives
    const TemporaryFolder folder;
    HandMadeLoop loop;
    RecordingDelegate delegate;
    std::shared_ptr<Quarner> burner = Quarner::audioCDBurner();
};

TEST_F(DesktopOwnLoop, AddsFilesAndBurnsAnImage) {
    ASSERT_TRUE(burner->addFilesInOrder({put("six.m4a", "b.m4a"), put("five.mp3", "a.mp3")}));
    ASSERT_TRUE(turnUntilCalled("addFilesProgressDidEnd"));
    EXPECT_EQ(burner->items().size(), 2U);
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    burner->burnWithDevice(QuarnerDevice(image), "Mix");
    ASSERT_TRUE(turnUntilCalled("burnProgressDidDone"));
    EXPECT_EQ(threadOf("burnProgressDidDone"), std::this_thread::get_id());
    EXPECT_TRUE(std::filesystem::exists(folder.file("mix.cue")));
}

TEST_F(DesktopOwnLoop, HearsOfDrivesThatComeAndGo) {
    QuarnerDevice anyDrive("");
    RecordingDeviceDelegate told;
    anyDrive.setDelegate(&told);
    const auto recorder = machine.plug({});
    EXPECT_TRUE(loop.turnUntil([&] { return told.calls.size() == 1; }));
    recorder->unplug();
    EXPECT_TRUE(loop.turnUntil([&] { return told.calls.size() == 2; }));
    EXPECT_THAT(told.calls, ElementsAre("deviceDidAppeared(QUARNER DISC RECORDER)",
                                        "deviceDidDisappeared(QUARNER DISC RECORDER)"));
}

TEST_F(DesktopOwnLoop, ReportsToTheMainThreadWhatAThreadWithoutALoopStarts) {
    ASSERT_TRUE(burner->addFiles({put("five.mp3", "a.mp3")}));
    ASSERT_TRUE(turnUntilCalled("addFilesProgressDidEnd"));
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    std::thread([&] { burner->burnWithDevice(QuarnerDevice(image), "Mix"); }).join();
    ASSERT_TRUE(turnUntilCalled("burnProgressDidDone"));
    EXPECT_EQ(threadOf("burnProgressDidDone"), std::this_thread::get_id());
}

TEST_F(DesktopOwnLoop, ARunThatWaitsForALoopThatHasEndedIsReleasedWithThePlatform) {
    ASSERT_TRUE(burner->addFiles({put("five.mp3", "a.mp3"), put("six.m4a", "b.m4a")}));
    while (loop.waiting() == 0)
        std::this_thread::yield();
    uninstallDesktopPlatform();
    EXPECT_THAT(delegate.calls(), Contains("addFilesProgressDidEnd"));
    EXPECT_TRUE(burner->items().empty());
    while (loop.turn()) { // what is left in it does nothing
    }
}

TEST_F(DesktopOwnLoop, ABurnThatIsUnderWayEndsSilentlyWithThePlatform) {
    ASSERT_TRUE(burner->addFiles({put("60.00.mp3", "a.mp3")}));
    ASSERT_TRUE(turnUntilCalled("addFilesProgressDidEnd"));
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    burner->burnWithDevice(QuarnerDevice(image), "Mix");
    ASSERT_TRUE(turnUntilCalled("burnProgressIsPreparing"));
    uninstallDesktopPlatform();
    delegate.forget();
    while (loop.turn()) {
    }
    EXPECT_TRUE(delegate.calls().empty());
    EXPECT_FALSE(std::filesystem::exists(folder.file("mix.cue")));
}

} // namespace
} // namespace quarner::testing
