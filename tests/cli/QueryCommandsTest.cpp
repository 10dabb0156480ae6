// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/TestHost.h"
#include "tests/cli/WatchFixture.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::ElementsAre;

TEST(DrivesCommand, ListsTheDrivesAndWhatTheyCanDo) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_EQ(host.run({"drives", "--json"}), 0);
    EXPECT_THAT(host.outLines(),
                ElementsAre(R"({"event":"drive","name":"Writer","canWriteCD":true,"disc":true})",
                            R"({"event":"drive","name":"Reader","canWriteCD":false,"disc":false})",
                            R"({"event":"exit","status":0})"));
}

TEST(DrivesCommand, OfDrivesThatShareANameEachIsToldAsItIs) {
    TestHost host;
    host.platform.addDrive({.name = "Twin"});
    host.platform.addDrive({.name = "Twin", .canWriteCD = false, .disc = DiscScript{}});
    EXPECT_EQ(host.run({"drives", "--json"}), 0);
    EXPECT_THAT(host.outLines(),
                ElementsAre(R"({"event":"drive","name":"Twin","canWriteCD":true,"disc":false})",
                            R"({"event":"drive","name":"Twin","canWriteCD":false,"disc":true})",
                            R"({"event":"exit","status":0})"));
}

TEST(DrivesCommand, AMachineWithoutDrivesIsNoFailure) {
    TestHost host;
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_EQ(host.out(), "");
}

TEST(DrivesCommand, AnImageIsADriveToo) {
    TestHost host;
    const std::string image = (std::filesystem::temp_directory_path() / "x.cue").string();
    EXPECT_EQ(host.run({"drives", "--image", image, "--json"}), 0);
    EXPECT_EQ(json::parse(host.outLines().at(0)).at("disc"), true);
    EXPECT_TRUE(host.images.at(0).loadExisting);
}

TEST(DiscCommand, AnImageOfEitherKindOfDiscWillDo) {
    TestHost host;
    const auto folder = std::filesystem::temp_directory_path();
    EXPECT_EQ(host.run({"disc", "--image", (folder / "x.iso").string()}), 0);
    EXPECT_EQ(host.run({"disc", "--image", (folder / "x.cue").string()}), 0);
    EXPECT_EQ(host.images.at(0).path, (folder / "x.iso").string());
    EXPECT_EQ(host.run({"eject", "--image", (folder / "x.bin").string()}), 2);
}

TEST(DiscCommand, TellsProgramsTheFigures) {
    TestHost host;
    host.platform.addDrive({.name = "Writer",
                            .disc = DiscScript{.type = DRDeviceMediaTypeCDRW,
                                               .isBlank = false,
                                               .isErasable = true,
                                               .spaceUsed = DRMSF::msfWithFrames(750),
                                               .blocksUsed = 750}});
    EXPECT_EQ(host.run({"disc", "--json"}), 0);
    const json disc = json::parse(host.outLines().at(0));
    EXPECT_EQ(disc, (json{{"event", "disc"},
                          {"name", "Writer"},
                          {"present", true},
                          {"kind", "CD-RW"},
                          {"cd", true},
                          {"blank", false},
                          {"appendable", true},
                          {"erasable", true},
                          {"overwritable", false},
                          {"usedTime", 10},
                          {"freeTime", 4797},
                          {"usedSize", 1536000},
                          {"freeSize", 736966656},
                          {"speeds", {300, 1800, 3900}}}));
}

TEST(DiscCommand, WithoutADriveThereIsNothingToShow) {
    TestHost host;
    EXPECT_EQ(host.run({"disc"}), 2);
}

TEST(DiscCommand, ADriveIsChosenByItsName) {
    TestHost host;
    host.platform.addDrive({.name = "One"});
    host.platform.addDrive({.name = "Two", .disc = DiscScript{.type = DRDeviceMediaTypeDVDR}});
    EXPECT_EQ(host.run({"disc"}), 2);
    EXPECT_EQ(host.run({"disc", "--drive", "Two", "--json"}), 0);
    EXPECT_EQ(json::parse(host.outLines().at(0)).at("kind"), "DVD-R");
}

TEST(EjectCommand, PutsTheDiscOut) {
    TestHost host;
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(host.run({"eject"}), 0);
    EXPECT_FALSE(drive->mediaIsPresent());
}

TEST(EjectCommand, ADriveThatKeepsItsDiscIsAFailure) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(host.run({"eject", "--json"}), 1);
    const json eject = json::parse(host.outLines().at(0));
    EXPECT_EQ(eject.at("ejected"), false);
    EXPECT_NE(eject.at("text"), "");
    EXPECT_EQ(host.outLines().at(1), R"({"event":"exit","status":1})");
}

TEST(EjectCommand, AnEmptyDriveHasNothingToPutOut) {
    TestHost host;
    host.platform.addDrive({.name = "Writer"});
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.out(), "");
    host.platform.addDrive({.name = "Loader", .isTransitioning = true});
    EXPECT_EQ(host.run({"eject", "--drive", "Loader"}), 1);
}

TEST(EjectCommand, ADriveThatCannotBeUsedIsAFailureWithTheReason) {
    TestHost host;
    // A busy drive seems to have no disc.
    host.platform.addDrive({.name = "Writer", .accessProblem = "/dev/sr0 is in use"});
    EXPECT_EQ(host.run({"eject", "--json"}), 1);
    const json eject = json::parse(host.outLines().at(0));
    EXPECT_EQ(eject.at("ejected"), false);
    EXPECT_EQ(eject.at("accessProblem"), "/dev/sr0 is in use");
    EXPECT_THAT(eject.at("text"), testing::HasSubstr("/dev/sr0 is in use"));
}

/// Runs `watch`.
using WatchCommandTest = WatchFixture;

TEST_F(WatchCommandTest, TellsProgramsTheCallbacks) {
    std::shared_ptr<ScriptedDrive> drive;
    EXPECT_EQ(watch({"--json"}, {[&] { drive = host.platform.plug({.name = "New"}); }, [] {}, [] {},
                                 [&] { drive->reportChange(); }, [] {}, [] {},
                                 [&] { host.platform.unplug(drive); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre(R"({"event":"watching","drives":[]})",
                                             R"({"event":"deviceDidAppeared","name":"New"})",
                                             R"({"event":"deviceStatusDidChanged","name":"New"})",
                                             R"({"event":"deviceDidDisappeared","name":"New"})",
                                             R"({"event":"exit","status":130})"));
}

TEST_F(WatchCommandTest, OpensNoDriveForWhatItDoesNotTell) {
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(watch({"--json"}, {[&] { drive->reportChange(); }, [] {}, [] {}}), 130);
    EXPECT_EQ(host.platform.calls(ServiceCall::DriveStatus), 0U);
}

TEST_F(WatchCommandTest, EndsWhenNobodyReadsAnyMore) {
    const auto drive = host.platform.addDrive({.name = "Writer"});
    bool isTooLate = false;
    EXPECT_EQ(watch({}, {[&] {
                             host.stopReading();
                             drive->reportChange();
                         },
                         [] {}, [] {}, [] {}, [] {}, [&] { isTooLate = true; }}),
              0);
    EXPECT_FALSE(isTooLate);
}

TEST_F(WatchCommandTest, DoesNotBeginWhereItsListCannotBeWritten) {
    host.stopReading();
    bool isTooLate = false;
    EXPECT_EQ(watch({}, {[] {}, [] {}, [] {}, [&] { isTooLate = true; }}), 0);
    EXPECT_FALSE(isTooLate);
}

TEST_F(WatchCommandTest, ADriveThatIsNamedIsTheOnlyOneToldOf) {
    const auto one = host.platform.addDrive({.name = "One"});
    const auto two = host.platform.addDrive({.name = "Two"});
    EXPECT_EQ(watch({"--json", "--drive", "Two"}, {[&] { one->insert({}); }, [] {}, [] {},
                                                   [&] { two->reportChange(); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre(R"({"event":"watching","drives":["Two"]})",
                                             R"({"event":"deviceStatusDidChanged","name":"Two"})",
                                             R"({"event":"exit","status":130})"));
}

TEST_F(WatchCommandTest, NothingIsToldOfADriveThatIsGone) {
    const auto drive = host.platform.addDrive({.name = "Old"});
    EXPECT_EQ(watch({"--json"}, {[&] { host.platform.unplug(drive); }, [] {}, [] {},
                                 [&] { drive->reportChange(); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre(R"({"event":"watching","drives":["Old"]})",
                                             R"({"event":"deviceDidDisappeared","name":"Old"})",
                                             R"({"event":"exit","status":130})"));
}

TEST_F(WatchCommandTest, WaitsAlsoOnAMachineWithoutDrives) { EXPECT_EQ(watch({}, {}), 130); }

} // namespace
} // namespace quarner::cli
