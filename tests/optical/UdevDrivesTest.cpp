// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/UdevDrives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "adapters/optical/KernelDrives.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> nodes() {
    std::vector<std::string> found;
    for (const DriveRecord& drive : listDrives())
        found.push_back(drive.node);
    return found;
}

TEST(UdevDrives, AMachineWithoutBlockDevicesHasNoDrives) {
    const UdevBed bed;
    EXPECT_THAT(listDrives(), IsEmpty());
}

TEST(UdevDrives, AWriterIsListedWithTheNameThatItGivesItself) {
    UdevBed bed;
    const std::string sysPath = bed.plug("sr0", UdevBed::writer("HL-DT-ST", "DVDRAM_GH24NSD1"));
    EXPECT_THAT(listDrives(), ElementsAre(DriveRecord{.node = "/dev/sr0",
                                                      .sysPath = sysPath,
                                                      .vendor = "HL-DT-ST",
                                                      .product = "DVDRAM GH24NSD1",
                                                      .canWriteCD = true}));
}

TEST(UdevDrives, AReaderIsListedAsOneThatCannotWrite) {
    UdevBed bed;
    bed.plug("sr0", {{"ID_CDROM", "1"}});
    ASSERT_EQ(listDrives().size(), 1U);
    EXPECT_FALSE(listDrives().front().canWriteCD);
}

TEST(UdevDrives, OtherBlockDevicesAreNotListed) {
    UdevBed bed;
    bed.plug("sda", {{"ID_VENDOR", "ATA"}});
    EXPECT_THAT(listDrives(), IsEmpty());
}

TEST(UdevDrives, TheOrderIsThatOfTheDeviceFiles) {
    UdevBed bed;
    for (const char* const name : {"sr10", "sr2", "sr0", "sr1"})
        bed.plug(name, UdevBed::writer("V", "M"));
    EXPECT_THAT(nodes(), ElementsAre("/dev/sr0", "/dev/sr1", "/dev/sr2", "/dev/sr10"));
}

TEST(UdevDrives, ADriveThatUdevHasNotLookedAtIsTakenFromTheKernel) {
    UdevBed bed;
    const std::string scsi = bed.addScsi("1:0:0:0", "5", "PLEXTOR ", "DVDR   PX-716A  ");
    bed.plug("sr0", {}, scsi);
    ASSERT_EQ(listDrives().size(), 1U);
    EXPECT_EQ(listDrives().front().node, "/dev/sr0");
    EXPECT_EQ(listDrives().front().vendor, "PLEXTOR");
    EXPECT_EQ(listDrives().front().product, "DVDR   PX-716A");
}

TEST(UdevDrives, OneThatUdevHasNotLookedAtWritesWhereTheKernelsTableSaysSo) {
    UdevBed bed;
    bed.plug("sr96", {}, bed.addScsi("1:0:0:0", "5", "V", "M"));
    bed.plug("sr97", {}, bed.addScsi("2:0:0:0", "5", "V", "M"));
    bed.writeFile("proc/sys/dev/cdrom/info", "drive name:\tsr97\tsr96\nCan write CD-R:\t0\t1\n");
    const std::vector<DriveRecord> drives = listDrives();
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_TRUE(drives[0].canWriteCD);
    EXPECT_FALSE(drives[1].canWriteCD);
}

TEST(UdevDrives, OneThatUdevHasNotLookedAtDoesNotWriteWithoutATable) {
    UdevBed bed;
    bed.plug("sr97", {}, bed.addScsi("1:0:0:0", "5", "V", "M"));
    ASSERT_EQ(listDrives().size(), 1U);
    EXPECT_FALSE(listDrives().front().canWriteCD);
}

TEST(UdevDrives, UdevRunsWhereItCanBeControlled) {
    EXPECT_EQ(isUdevRunning(), std::filesystem::exists("/run/udev/control"));
}

TEST(UdevDrives, ADiscThatUdevHasNotLookedAtIsNoOpticalDrive) {
    UdevBed bed;
    bed.plug("sda", {}, bed.addScsi("0:0:0:0", "0", "ATA", "DISK"));
    EXPECT_THAT(listDrives(), IsEmpty());
}

constexpr char table[] = "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n"
                         "\n"
                         "drive name:\t\tsr1\tsr0\n"
                         "drive speed:\t\t24\t48\n"
                         "Can read multisession:\t1\t1\n"
                         "Can write CD-R:\t\t0\t1\n"
                         "Can write CD-RW:\t1\t1\n";

TEST(KernelDrives, TheKernelsTableTellsWriterFromReader) {
    EXPECT_TRUE(tableSaysWritesCD(table, "sr0"));
    EXPECT_FALSE(tableSaysWritesCD(table, "sr1"));
}

TEST(KernelDrives, ATableWithoutTheDriveOrTheAbilitySaysNo) {
    EXPECT_FALSE(tableSaysWritesCD(table, "sr2"));
    EXPECT_FALSE(tableSaysWritesCD("drive name:\tsr0\n", "sr0"));
    EXPECT_FALSE(tableSaysWritesCD("drive name:\tsr1\tsr0\nCan write CD-R:\t1\n", "sr0"));
    EXPECT_FALSE(tableSaysWritesCD("", "sr0"));
}

} // namespace
} // namespace quarner
