// SPDX-License-Identifier: LGPL-2.1-or-later
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include "quarner/platform/DRErrors.h"
#include "tests/desktop/OpticalDriveFixture.h"
#include "tests/support/RecordingDeviceDelegate.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DesktopOpticalDrives : public OpticalDriveTest {
protected:
    /// Starts a slow burn of a minute of sound.
    std::shared_ptr<EmulatedRecorder> burnSlowly() {
        const auto recorder = plug({.delay = std::chrono::milliseconds(2)});
        compile({put("60.00.mp3", "one.mp3")});
        burner->burnWithDevice(QuarnerDevice(name), "Mix");
        EXPECT_TRUE(runUntilCalled("burnProgressIsWriteingTrack(1, 1)"));
        return recorder;
    }
};

TEST_F(DesktopOpticalDrives, StandBeforeTheImageDrives) {
    plug();
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre(name, image));
    EXPECT_TRUE(QuarnerDevice(name).cdBurnEnabled());
    EXPECT_EQ(QuarnerDevice(name).freeTimeOfDisc(), 79U * 60 + 57);
}

TEST_F(DesktopOpticalDrives, AreToldOfAsTheyComeAndGo) {
    QuarnerDevice anyDrive("");
    RecordingDeviceDelegate told;
    anyDrive.setDelegate(&told);
    const auto recorder = machine.plug({});
    EXPECT_TRUE(runUntil([&] { return told.calls.size() == 1; }));
    recorder->unplug();
    EXPECT_TRUE(runUntil([&] { return told.calls.size() == 2; }));
    EXPECT_THAT(told.calls, ElementsAre(std::string("deviceDidAppeared(") + name + ")",
                                        std::string("deviceDidDisappeared(") + name + ")"));
}

TEST_F(DesktopOpticalDrives, OfAnUninstalledPlatformRefuseABurn) {
    const auto recorder = plug();
    const QuarnerDevice drive(name);
    compile({put("five.mp3", "one.mp3")});
    uninstallDesktopPlatform();
    delegate.forget();
    EXPECT_FALSE(drive.isDiscInDevice());
    burner->burnWithDevice(drive, std::nullopt);
    EXPECT_THAT(delegate.calls(),
                ElementsAre("burnProgressDidStarted", "burnProgressDidError(Quarn, 0)"));
}

TEST_F(DesktopOpticalDrives, TakeAnAudioCD) {
    const auto recorder = plug();
    compile({put("five.mp3", "one.mp3"), put("six.m4a", "two.m4a")});
    ASSERT_EQ(burn(), "burnProgressDidDone");
    const auto disc = recorder->writtenDisc();
    ASSERT_TRUE(disc);
    ASSERT_EQ(disc->tracks.size(), 2U);
    EXPECT_EQ(disc->tracks[0].length, 375U);
    EXPECT_EQ(disc->tracks[1].preGap, 150U);
    EXPECT_EQ(disc->tracks[1].length, 450U);
    EXPECT_FALSE(recorder->isTrayLocked());
}

TEST_F(DesktopOpticalDrives, TakeADataCD) {
    const auto recorder = plug();
    burner = Quarner::dataCDBurner();
    burner->setDelegate(&delegate);
    compile({put("60.00.mp3", "one.mp3")});
    ASSERT_EQ(burn(), "burnProgressDidDone");
    const auto disc = recorder->writtenDisc();
    ASSERT_TRUE(disc);
    ASSERT_EQ(disc->tracks.size(), 1U);
    EXPECT_FALSE(disc->tracks[0].isAudio);
}

TEST_F(DesktopOpticalDrives, ABurnOnADriveThatIsPulledFails) {
    const auto recorder = burnSlowly();
    recorder->unplug();
    EXPECT_THAT(end(), HasSubstr(std::to_string(signedCode(DRError::DeviceVanished))));
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
}

TEST_F(DesktopOpticalDrives, EndWithThePlatformInTheMidstOfABurn) {
    const auto recorder = burnSlowly();
    uninstallDesktopPlatform();
    EXPECT_FALSE(recorder->isTrayLocked());
    EXPECT_TRUE(runUntil([&] { return recorder->openCount() == 0; }));
}

/// Lets other users see the device files of the test bed, and the group "cdrom" use one of them.
void openToGroup(const std::string& node) {
    const std::filesystem::path root = std::getenv("UMOCKDEV_DIR");
    EXPECT_EQ(chmod(root.c_str(), 0755), 0);
    EXPECT_EQ(chmod((root / node).c_str(), 0660), 0);
    const group* const cdrom = getgrnam("cdrom");
    EXPECT_EQ(chown((root / node).c_str(), 0, cdrom == nullptr ? 0 : cdrom->gr_gid), 0);
}

/// Returns a function's result in a process of a user without any rights.
std::string askedWithoutRights(const std::function<std::string()>& function) {
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        constexpr gid_t nobody = 65534;
        const bool isNobody =
            setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0;
        const std::string answer = isNobody ? function() : "not root";
        const ssize_t written = write(ends[1], answer.data(), answer.size());
        _exit(written < 0 ? 1 : 0);
    }
    close(ends[1]);
    std::array<char, 1000> answer = {};
    const ssize_t size = read(ends[0], answer.data(), answer.size());
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return std::string(answer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
}

TEST_F(DesktopOpticalDrives, ThatThisUserMayNotOpenSayWhy) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another user";
    plug();
    EXPECT_EQ(driveAccessProblem(name), "");
    EXPECT_EQ(driveAccessProblem("no such drive"), "");
    openToGroup("dev/sr0");
    EXPECT_THAT(askedWithoutRights([] { return driveAccessProblem(name); }),
                HasSubstr("/dev/sr0 may be opened only by members of the group cdrom"));
}

TEST_F(DesktopOpticalDrives, ThatAnotherProgramUsesSayThat) {
    const auto recorder = plug();
    recorder->setBusy(1000);
    EXPECT_THAT(driveAccessProblem(name), HasSubstr("/dev/sr0 is in use by another program"));
    recorder->setBusy(0);
    EXPECT_EQ(driveAccessProblem(name), "");
}

TEST_F(DesktopOpticalDrives, ThatBurnHereHaveNoProblem) {
    const auto recorder = burnSlowly();
    EXPECT_EQ(driveAccessProblem(name), "");
    EXPECT_EQ(recorder->openCount(), 1);
    EXPECT_EQ(end(), "burnProgressDidDone");
}

TEST_F(DesktopOpticalDrives, ThatAreAskedForSomethingHaveNoProblem) {
    const auto recorder = plug();
    std::atomic<bool> isAsked = false;
    recorder->setCommandHook([&](std::uint8_t) { isAsked = true; });
    recorder->setDelay(std::chrono::milliseconds(30)); // for each command of a query
    std::thread asking([] { EXPECT_TRUE(QuarnerDevice(name).device()->mediaIsPresent()); });
    EXPECT_TRUE(runUntil([&] { return isAsked.load(); }));
    EXPECT_EQ(driveAccessProblem(name), "");
    asking.join();
    recorder->setCommandHook(nullptr);
}

TEST_F(DesktopOpticalDrives, AreHeardOfOnlyWhereTheSystemTellsOfThem) {
    if (access("/run/udev/control", F_OK) == 0)
        GTEST_SKIP() << "the device manager runs here, so they are listed from the beginning";
    EXPECT_FALSE(receivesDriveEvents());
    plug(); // which the test bed reports as the device manager does
    EXPECT_TRUE(runUntil([] { return receivesDriveEvents(); }));
    uninstallDesktopPlatform();
    EXPECT_FALSE(receivesDriveEvents());
}

} // namespace
} // namespace quarner::testing
