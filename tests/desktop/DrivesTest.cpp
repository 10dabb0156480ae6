// SPDX-License-Identifier: LGPL-2.1-or-later
#include <thread>

#include "tests/desktop/DesktopFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DriveReport : public QuarnerDeviceDelegate {
public:
    void deviceStatusDidChanged() override { keep("changed"); }
    void deviceDidAppeared(const std::string& name) override { keep("appeared " + name); }
    void deviceDidDisappeared(const std::string& name) override { keep("disappeared " + name); }

    std::vector<std::string> calls;

private:
    void keep(const std::string& call) {
        EXPECT_EQ(std::this_thread::get_id(), _thread);
        calls.push_back(call);
    }
    const std::thread::id _thread = std::this_thread::get_id();
};

class DesktopDrives : public DesktopTest {
protected:
    std::string add(const std::string& name, int minutes = 80, bool loadExisting = false) const {
        return addImageDrive(
            {.path = folder.file(name), .minutes = minutes, .loadExisting = loadExisting});
    }
};

TEST_F(DesktopDrives, DrivesAreListedByNamesOfTheirOwn) {
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
    std::filesystem::create_directory(folder.file("other"));
    const std::string first = add("mix.cue");
    const std::string second = add("other/mix.cue");
    EXPECT_NE(first, second);
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre(first, second));
    EXPECT_TRUE(removeImageDrive(first));
    EXPECT_FALSE(removeImageDrive(first));
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre(second));
}

TEST_F(DesktopDrives, WhatIsNoImageOrNoDiscGivesNoDrive) {
    EXPECT_EQ(add("mix.wav"), "");
    EXPECT_EQ(add("mix.cue", 60), "");
    EXPECT_EQ(add("mix.cue", -80), "");
    EXPECT_FALSE(insertBlankDisc("no such drive"));
    uninstallDesktopPlatform();
    EXPECT_EQ(add("mix.cue"), "");
    EXPECT_FALSE(removeImageDrive("mix.cue"));
    EXPECT_FALSE(insertBlankDisc("mix.cue"));
}

TEST_F(DesktopDrives, AnImageThatCannotBeWrittenIsFoundOutBefore) {
    EXPECT_FALSE(findImageProblem(folder.file("mix.cue")));
    std::filesystem::create_directory(folder.file("mix.bin"));
    const std::optional<ImageProblem> problem = findImageProblem(folder.file("mix.cue"));
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->code, signedCode(DRError::WriteFailed));
    EXPECT_EQ(problem->info, folder.file("mix.bin") + " is not a file and is not replaced");
}

TEST_F(DesktopDrives, ABlankDiscOfEightyMinutesIsSeenAsSuch) {
    const QuarnerDevice drive(add("mix.cue"));
    EXPECT_TRUE(drive.cdBurnEnabled());
    EXPECT_TRUE(drive.isDiscInDevice());
    EXPECT_TRUE(drive.isDiscBlank());
    EXPECT_TRUE(drive.isCDDisc());
    EXPECT_FALSE(drive.isCheckingDisc());
    EXPECT_EQ(drive.currentBurnSpeed(), 0.0F);
    EXPECT_EQ(drive.freeSizeOfDisc(), 736'966'656U);
    EXPECT_EQ(drive.stringForFreeSizeOfDisc(), "702.8 MB");
    EXPECT_EQ(drive.stringForFreeTimeOfDisc(), "01:19:57");
    EXPECT_EQ(drive.stringForUsedTimeOfDisc(), "00:00:00");
    ASSERT_TRUE(drive.availableBurnSpeeds());
    EXPECT_FALSE(drive.availableBurnSpeeds()->empty());
    EXPECT_EQ(QuarnerDevice(add("short.cue", 74)).freeTimeOfDisc(), 74U * 60);
}

TEST_F(DesktopDrives, AnEmptyDriveHasNothingToTell) {
    QuarnerDevice drive(add("mix.cue"));
    drive.eject();
    EXPECT_FALSE(drive.isDiscInDevice());
    EXPECT_FALSE(drive.isDiscBlank());
    EXPECT_FALSE(drive.isCDDisc());
    EXPECT_EQ(drive.freeSizeOfDisc(), 0U);
    EXPECT_EQ(drive.freeTimeOfDisc(), 0U);
    EXPECT_FALSE(drive.availableBurnSpeeds());
    EXPECT_TRUE(drive.cdBurnEnabled());
}

TEST_F(DesktopDrives, AnExistingImageIsLoadedAsAWrittenDiscOnRequest) {
    const std::string name = add("mix.cue");
    compile({put("five.mp3", "one.mp3")});
    burner->burnWithDevice(QuarnerDevice(name), std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    ASSERT_TRUE(removeImageDrive(name));
    EXPECT_TRUE(QuarnerDevice(add("mix.cue")).isDiscBlank());
    const QuarnerDevice written(add("mix.cue", 80, true));
    EXPECT_TRUE(written.isDiscInDevice());
    EXPECT_FALSE(written.isDiscBlank());
    EXPECT_EQ(written.usedTimeOfDisc(), 5U);
}

TEST_F(DesktopDrives, ChangesAreHeardThroughTheLoopAndNotInline) {
    const std::string name = add("mix.cue");
    runPending();
    DriveReport report;
    QuarnerDevice drive(name);
    drive.setDelegate(&report);
    const std::string other = add("other.cue");
    drive.eject();
    insertBlankDisc(other); // refused, and not about the bound drive
    insertBlankDisc(name);
    removeImageDrive(other);
    EXPECT_THAT(report.calls, IsEmpty());
    runPending();
    EXPECT_THAT(report.calls,
                ElementsAre("appeared " + other, "changed", "changed", "disappeared " + other));
}

TEST_F(DesktopDrives, AHandleKeepsADriveThatIsGoneAndDoesNotRebind) {
    const std::string name = add("mix.cue");
    DriveReport report;
    QuarnerDevice drive(name);
    runPending();
    drive.setDelegate(&report);
    EXPECT_TRUE(removeImageDrive(name));
    runPending();
    EXPECT_THAT(report.calls, ElementsAre("disappeared " + name));
    EXPECT_EQ(drive.deviceName(), name);
    EXPECT_FALSE(drive.isDiscInDevice());
    const auto gone = drive.device();
    EXPECT_EQ(add("mix.cue"), name);
    EXPECT_EQ(drive.device(), gone);
    EXPECT_NE(QuarnerDevice(name).device(), gone);
}

TEST_F(DesktopDrives, AnUnboundHandleIsNeutralAndStillHearsOfDrives) {
    DriveReport report;
    QuarnerDevice drive("no such drive");
    drive.setDelegate(&report);
    EXPECT_FALSE(drive.isDiscInDevice());
    EXPECT_FALSE(drive.cdBurnEnabled());
    EXPECT_FALSE(drive.deviceName());
    EXPECT_FALSE(drive.device());
    EXPECT_EQ(drive.stringForFreeTimeOfDisc(), "00:00:00");
    drive.eject();
    const std::string name = add("mix.cue");
    runPending();
    drive.setDelegate(nullptr);
    removeImageDrive(name);
    runPending();
    EXPECT_THAT(report.calls, ElementsAre("appeared " + name));
}

TEST_F(DesktopDrives, AThreadWithItsOwnLoopHearsThere) {
    std::thread([&] {
        GMainContext* const context = g_main_context_new();
        g_main_context_push_thread_default(context);
        {
            DriveReport report; // checks the thread of every call
            QuarnerDevice drive("none");
            drive.setDelegate(&report);
            const std::string name = add("mix.cue");
            while (report.calls.empty())
                g_main_context_iteration(context, TRUE);
            EXPECT_THAT(report.calls, ElementsAre("appeared " + name));
        }
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }).join();
}

TEST_F(DesktopDrives, InstallingAgainKeepsTheDrives) {
    const std::string name = add("mix.cue");
    installDesktopPlatform();
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre(name));
    installPlatform({});
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
    installDesktopPlatform();
    EXPECT_THAT(QuarnerDevice::devices(), ElementsAre(name));
    uninstallDesktopPlatform();
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
    uninstallDesktopPlatform();
    installDesktopPlatform();
    EXPECT_THAT(QuarnerDevice::devices(), IsEmpty());
}

} // namespace
} // namespace quarner::testing
