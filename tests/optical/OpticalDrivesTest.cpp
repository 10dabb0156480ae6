// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/OpticalDrives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/optical/DeviceNotes.h"
#include "tests/support/StepLoops.h"
#include "tests/support/optical/EventLoss.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpticalDrivesTest : public ::testing::Test {
protected:
    void start(bool isUdevRunning = true) {
        drives = std::make_shared<OpticalDrives>(
            loops, OpticalDrivesParts{.isUdevRunning = isUdevRunning});
        notes = std::make_unique<DeviceNotes>(loops->currentCenter());
    }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& drive : drives->devices())
            found.push_back(drive->displayName());
        return found;
    }

    bool hearNotes(std::size_t count) {
        return loops->runUntil([&] { return notes->all().size() >= count; },
                               std::chrono::seconds(10));
    }

    UdevBed bed;
    const std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<OpticalDrives> drives;
    std::unique_ptr<DeviceNotes> notes;
};

TEST_F(OpticalDrivesTest, AMachineWithoutDrivesHasNone) {
    start();
    EXPECT_THAT(drives->devices(), IsEmpty());
}

TEST_F(OpticalDrivesTest, DrivesAreNamedAfterVendorAndProductAndUnlikeEachOther) {
    bed.plug("sr1", UdevBed::writer("ASUS", "DRW-24"));
    bed.plug("sr0", UdevBed::writer("ASUS", "DRW-24"));
    bed.plug("sr2", {{"ID_CDROM", "1"}, {"ID_MODEL", "HL-DT-ST_DVDRAM"}});
    bed.plug("sr3", {{"ID_CDROM", "1"}});
    start();
    EXPECT_THAT(names(), ElementsAre("ASUS DRW-24", "ASUS DRW-24 (2)", "HL-DT-ST DVDRAM", "sr3"));
}

TEST_F(OpticalDrivesTest, ANameIsMadeReadable) {
    bed.plug("sr0", UdevBed::writer("V", "M\x1b[1m"));
    start();
    EXPECT_THAT(names(), ElementsAre("V M\xef\xbf\xbd[1m"));
}

TEST_F(OpticalDrivesTest, ADriveSaysWhetherItWrites) {
    bed.plug("sr0", UdevBed::writer("V", "Writer"));
    bed.plug("sr1", {{"ID_CDROM", "1"}, {"ID_MODEL", "Reader"}});
    start();
    const auto listed = drives->devices();
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_TRUE(valueFor(listed[0]->info(), DRDeviceCanWriteCDKey).asBool());
    EXPECT_FALSE(valueFor(listed[1]->info(), DRDeviceCanWriteCDKey).asBool());
}

TEST_F(OpticalDrivesTest, TheSameObjectStandsForTheSameDrive) {
    bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    EXPECT_EQ(drives->devices(), drives->devices());
}

TEST_F(OpticalDrivesTest, ADriveThatIsPluggedInAppearsInTheOrderOfTheDeviceFiles) {
    bed.plug("sr1", UdevBed::writer("V", "First"));
    start();
    bed.plug("sr0", UdevBed::writer("V", "Second"));
    ASSERT_TRUE(hearNotes(1));
    EXPECT_THAT(notes->all(), ElementsAre("+ V Second"));
    EXPECT_THAT(names(), ElementsAre("V Second", "V First"));
}

TEST_F(OpticalDrivesTest, ADriveThatIsUnpluggedDisappearsAndAnswersOn) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    const auto drive = drives->devices().at(0);
    bed.unplug(sysPath);
    ASSERT_TRUE(hearNotes(1));
    EXPECT_THAT(notes->all(), ElementsAre("- V M"));
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(drive->displayName(), "V M");
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST_F(OpticalDrivesTest, ADriveThatComesBackIsANewOneOfTheSameName) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    const auto before = drives->devices().at(0);
    bed.unplug(sysPath);
    bed.plug("sr0", UdevBed::writer("V", "M"));
    ASSERT_TRUE(hearNotes(2));
    EXPECT_THAT(notes->all(), ElementsAre("- V M", "+ V M"));
    EXPECT_NE(drives->devices().at(0), before);
}

TEST_F(OpticalDrivesTest, ANameThatIsTakenIsNotGivenAgain) {
    const std::string first = bed.plug("sr0", UdevBed::writer("V", "M"));
    bed.plug("sr1", UdevBed::writer("V", "M"));
    start();
    bed.unplug(first);
    bed.plug("sr2", UdevBed::writer("V", "M"));
    ASSERT_TRUE(hearNotes(2));
    EXPECT_THAT(names(), ElementsAre("V M (2)", "V M"));
}

TEST_F(OpticalDrivesTest, ADriveThatUdevTellsOfAgainIsNotToldOfTwice) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    bed.send(sysPath, "add");
    bed.send(sysPath, "change");
    bed.send(sysPath, "remove");
    bed.unplug(sysPath);
    bed.plug("sr1", UdevBed::writer("V", "Last"));
    ASSERT_TRUE(hearNotes(2));
    EXPECT_THAT(notes->all(), ElementsAre("- V M", "+ V Last"));
}

TEST_F(OpticalDrivesTest, AnotherDiscIsANewStatusOfItsDrive) {
    bed.plug("sr0", UdevBed::writer("V", "M"));
    const std::string changed = bed.plug("sr1", UdevBed::writer("V", "N"));
    start();
    bed.changeMedia(changed);
    ASSERT_TRUE(hearNotes(1));
    EXPECT_THAT(notes->all(), ElementsAre("~ V N"));
}

TEST_F(OpticalDrivesTest, WhereUdevRunsADriveStaysUntilUdevTellsOfItsEnd) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    EXPECT_TRUE(drives->receivesEvents());
    bed.unplugSilently(sysPath);
    EXPECT_THAT(names(), ElementsAre("V M"));
}

TEST_F(OpticalDrivesTest, WithoutUdevTheListIsThatOfTheMoment) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    bed.plug("sr1", UdevBed::writer("V", "N"));
    start(false);
    EXPECT_FALSE(drives->receivesEvents());
    EXPECT_THAT(names(), ElementsAre("V M", "V N"));
    const auto other = drives->devices().at(1);
    bed.unplugSilently(sysPath);
    EXPECT_THAT(drives->devices(), ElementsAre(other));
    loops->runPending();
    EXPECT_THAT(notes->all(), ElementsAre("- V M"));
}

TEST_F(OpticalDrivesTest, OnThisMachineTheListIsThatOfTheMomentUnlessUdevRuns) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    drives = std::make_shared<OpticalDrives>(loops);
    const bool isUdevRunning = std::filesystem::exists("/run/udev/control");
    EXPECT_EQ(drives->receivesEvents(), isUdevRunning);
    bed.unplugSilently(sysPath);
    EXPECT_EQ(names().empty(), !isUdevRunning);
}

TEST_F(OpticalDrivesTest, WithoutUdevADriveIsListedAsSoonAsItIsThere) {
    start(false);
    EXPECT_THAT(names(), IsEmpty());
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    EXPECT_THAT(names(), ElementsAre("V M"));
    EXPECT_THAT(names(), ElementsAre("V M"));
    loops->runPending();
    EXPECT_THAT(notes->all(), ElementsAre("+ V M"));
}

/// On a machine whose kernel does not list the drive in its table.
class LateUdevTest : public OpticalDrivesTest {
protected:
    /// Plugs in a drive that udev has not processed yet.
    std::string plugUnseen() { return bed.plug("sr97", {}, bed.addScsi("1:0:0:0", "5", "V", "M")); }
    /// Makes udev report other properties of a drive.
    void findOut(const std::string& sysPath, const UdevBed::Properties& properties) {
        for (const auto& [key, value] : properties)
            bed.setProperty(sysPath, key, value);
        bed.send(sysPath, "add");
    }
    bool writes() {
        return valueFor(drives->devices().at(0)->info(), DRDeviceCanWriteCDKey).asBool();
    }
};

TEST_F(LateUdevTest, ADriveThatUdevComesToLateIsReplacedByOneThatWrites) {
    const std::string sysPath = plugUnseen();
    start();
    const auto before = drives->devices().at(0);
    EXPECT_FALSE(writes());
    findOut(sysPath, UdevBed::writer("V", "M"));
    ASSERT_TRUE(hearNotes(2));
    EXPECT_THAT(notes->all(), ElementsAre("- V M", "+ V M"));
    EXPECT_TRUE(writes());
    EXPECT_NE(drives->devices().at(0), before);
}

TEST_F(LateUdevTest, ADriveIsReplacedByOneOfAnotherName) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    findOut(sysPath, UdevBed::writer("V", "N"));
    ASSERT_TRUE(hearNotes(2));
    EXPECT_THAT(notes->all(), ElementsAre("- V M", "+ V N"));
}

TEST_F(LateUdevTest, ADriveOfWhichUdevTellsLessStaysTheSame) {
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("V", "M"));
    start();
    const auto before = drives->devices();
    findOut(sysPath, {{"ID_CDROM_CD_R", ""}});
    findOut(sysPath, {{"ID_VENDOR", ""}, {"ID_MODEL", ""}});
    bed.plug("sr1", UdevBed::writer("V", "Last"));
    ASSERT_TRUE(hearNotes(1));
    EXPECT_THAT(notes->all(), ElementsAre("+ V Last"));
    EXPECT_EQ(drives->devices().at(0), before.at(0));
}

TEST_F(LateUdevTest, WithoutEventsTheListTellsWhatUdevHasFoundOut) {
    const std::string sysPath = plugUnseen();
    start(false);
    EXPECT_FALSE(writes());
    for (const auto& [key, value] : UdevBed::writer("V", "M"))
        bed.setProperty(sysPath, key, value);
    EXPECT_TRUE(writes());
}

TEST_F(OpticalDrivesTest, WhatWasLostIsMadeUpFor) {
    const std::string gone = bed.plug("sr0", UdevBed::writer("V", "Gone"));
    bed.plug("sr1", UdevBed::writer("V", "Stays"));
    start();
    bed.unplugSilently(gone);
    loseNextEvent();
    bed.plug("sr2", UdevBed::writer("V", "Comes"));
    ASSERT_TRUE(hearNotes(3));
    bed.plug("sr3", UdevBed::writer("V", "Last"));
    ASSERT_TRUE(hearNotes(4));
    EXPECT_THAT(notes->all(), ElementsAre("- V Gone", "+ V Comes", "~ V Stays", "+ V Last"))
        << "the disc of the one that stays may have been changed";
}

TEST_F(OpticalDrivesTest, ToLookAfreshIsNoChangeOfADisc) {
    bed.plug("sr0", UdevBed::writer("V", "M"));
    start(false);
    names();
    loops->runPending();
    EXPECT_THAT(notes->all(), IsEmpty());
}

TEST_F(OpticalDrivesTest, AListEndsWhileDrivesComeAndGo) {
    start();
    for (int round = 0; round < 20; ++round) {
        bed.unplug(bed.plug("sr0", UdevBed::writer("V", "M")));
        notes.reset();
        drives.reset();
        start();
    }
    EXPECT_THAT(names(), IsEmpty());
}

} // namespace
} // namespace quarner
