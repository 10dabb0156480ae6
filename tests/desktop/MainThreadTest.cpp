// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <quarner/desktop.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "quarner/quarner.h"
#include "tests/support/HandMadeLoop.h"
#include "tests/support/ProjectObserver.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner::testing {
namespace {

using Duration = std::chrono::nanoseconds;

/// A host that measures how long each call keeps its main thread from drawing: by the processor
/// time, which does not depend on what else the machine does.
class DesktopMainThread : public ::testing::TestWithParam<DiscProject::Kind> {
protected:
    DesktopMainThread() {
        installDesktopPlatform({.postToMain = [this](std::function<void()> work) {
            loop.post([this, work = std::move(work)] { measure(work); });
        }});
    }
    ~DesktopMainThread() override { uninstallDesktopPlatform(); }

    static Duration processorTime() {
        timespec now = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return std::chrono::seconds(now.tv_sec) + Duration(now.tv_nsec);
    }
    template <typename Call>
    void measure(const Call& call) {
        const Duration before = processorTime();
        call();
        longest = std::max(longest, processorTime() - before);
    }
    std::vector<std::string> putFiles(std::size_t count) const {
        std::vector<std::string> paths;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isMP3 = i % 2 == 0;
            const std::string name = std::to_string(i) + (isMP3 ? ".mp3" : ".m4a");
            std::filesystem::copy_file(TEST_SONGS + std::string(isMP3 ? "five.mp3" : "six.m4a"),
                                       folder.file(name));
            paths.push_back(folder.file(name));
        }
        return paths;
    }
    /// What a frame of a film may take at 50 a second. The sanitizers make everything slower.
    static Duration limit() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return std::chrono::milliseconds(400);
#else
        return std::chrono::milliseconds(20);
#endif
    }

    OpticalBed machine; // before the platform, which lists its drives
    const TemporaryFolder folder;
    HandMadeLoop loop;
    Duration longest{};
};

TEST_P(DesktopMainThread, IsNeverHeldForLongWhileManyFilesAreAddedAndBurnt) {
    const bool isAudio = GetParam() == DiscProject::Kind::Audio;
    const std::vector<std::string> paths = putFiles(isAudio ? 99 : 200);
    const std::string image = addImageDrive({.path = folder.file(isAudio ? "a.cue" : "a.iso")});
    DiscProject project(GetParam());
    const auto observer = std::make_shared<ProjectObserver>();
    project.addObserver(observer);
    // What a window shows after a change.
    observer->onCall = [&] { project.problems(project.driveNamed(image).value_or(0)); };

    measure([&] { project.add(paths); });
    ASSERT_TRUE(loop.turnUntil([&] { return !project.isAdding(); }));
    ASSERT_EQ(observer->rows.size(), paths.size());
    measure([&] { project.burn(project.driveNamed(image).value()); });
    ASSERT_TRUE(loop.turnUntil([&] { return !observer->burnEnds.empty(); }));
    EXPECT_EQ(observer->burnEnds[0].outcome, DiscBurnEnd::Outcome::Done);
    EXPECT_LT(longest, limit());
}

INSTANTIATE_TEST_SUITE_P(, DesktopMainThread,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         [](const auto& tested) {
                             return tested.param == DiscProject::Kind::Audio ? "Audio" : "Data";
                         });

/// A host that shows the disc: it asks for it whenever the drive reports a change.
class DiscView : public QuarnerDeviceDelegate {
public:
    explicit DiscView(const char* drive) : _device(drive) { _device.setDelegate(this); }
    void deviceStatusDidChanged() override {
        _device.isDiscInDevice();
        ++changes;
    }

    unsigned changes = 0;

private:
    QuarnerDevice _device;
};

/// A host whose drive stops responding in the midst of writing. The time of each call counts here,
/// whether the thread works or waits.
class MainThreadOfADriveThatHangs : public ::testing::Test {
protected:
    MainThreadOfADriveThatHangs() {
        installDesktopPlatform({.postToMain = [this](std::function<void()> work) {
            loop.post([this, work = std::move(work)] { measure(work); });
        }});
    }
    ~MainThreadOfADriveThatHangs() override {
        recorder->resume();
        uninstallDesktopPlatform();
    }

    template <typename Call>
    void measure(const Call& call) {
        const auto before = std::chrono::steady_clock::now();
        call();
        longest = std::max<Duration>(longest, std::chrono::steady_clock::now() - before);
    }

    /// Burns a song until the drive hangs, does something and expects the burn to end.
    void burnAnd(const std::function<void(DiscProject&)>& act, DiscBurnEnd::Outcome outcome) {
        constexpr std::uint8_t write = 0x2A; // MMC-6
        constexpr char name[] = "QUARNER DISC RECORDER";
        DiscProject project(DiscProject::Kind::Audio);
        const auto drive = [&] { return project.driveNamed(name).value_or(0); };
        const auto observer = std::make_shared<ProjectObserver>();
        project.addObserver(observer);
        measure([&] { project.add({TEST_SONGS + std::string("five.mp3")}); });
        ASSERT_TRUE(loop.turnUntil([&] { return !project.isAdding() && drive() != 0; }));
        DiscView view(name);
        recorder->hangAt(write);
        measure([&] { project.burn(drive()); });
        ASSERT_TRUE(loop.turnUntil([&] { return recorder->isHanging(); }));
        view.changes = 0;
        longest = {}; // when the burn began, the first query of the drive may still have run
        const auto begin = std::chrono::steady_clock::now();
        measure([&] { act(project); });
        ASSERT_TRUE(loop.turnUntil([&] { return !observer->burnEnds.empty(); }));
        EXPECT_EQ(observer->burnEnds[0].outcome, outcome);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
        EXPECT_TRUE(loop.turnUntil([&] { return view.changes > 0; })) << "the end of the burn";
        // Usually a tenth of a millisecond, or what it takes to unplug an emulated drive. The
        // timeout of a query that the host waits for has 20 seconds.
        EXPECT_LT(longest, std::chrono::seconds(1));
        RecordProperty("microseconds", std::to_string(longest.count() / 1000));
    }

    OpticalBed machine; // before the platform, which lists its drives
    HandMadeLoop loop;
    Duration longest{};
    std::shared_ptr<EmulatedRecorder> recorder = machine.plug();
};

TEST_F(MainThreadOfADriveThatHangs, IsNotHeldWhenTheBurnIsCancelled) {
    burnAnd([](DiscProject& project) { project.cancelBurn(); }, DiscBurnEnd::Outcome::Canceled);
}

TEST_F(MainThreadOfADriveThatHangs, IsNotHeldWhenTheDriveIsUnplugged) {
    burnAnd([this](DiscProject&) { recorder->unplug(); }, DiscBurnEnd::Outcome::Failed);
}

} // namespace
} // namespace quarner::testing
