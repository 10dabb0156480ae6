// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/TestHost.h"

namespace quarner::cli {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(DrivesCommand, ListsTheDrivesAndWhatTheyCanDo) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.addDrive({.name = "Reader", .canWriteCD = false});
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Writer: writes CDs; CD-R, blank, 01:19:57 free",
                                             "Reader: cannot write CDs; no disc"));
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
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(
        host.outLines(),
        ElementsAre("Twin: writes CDs; cannot be chosen, as a later drive has the same name",
                    "Twin: cannot write CDs; CD-R, blank, 01:19:57 free"));
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
    EXPECT_THAT(host.err(), HasSubstr("there is no drive"));
}

TEST(DrivesCommand, AnImageIsADriveToo) {
    TestHost host;
    const std::string image = (std::filesystem::temp_directory_path() / "x.cue").string();
    EXPECT_EQ(host.run({"drives", "--image", image}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre(HasSubstr("x.cue: writes CDs; CD-R, blank")));
    EXPECT_EQ(host.images.at(0).disc, ImageRequest::Disc::ExistingOrBlank);
}

TEST(DiscCommand, AnImageOfEitherKindOfDiscWillDo) {
    TestHost host;
    const auto folder = std::filesystem::temp_directory_path();
    EXPECT_EQ(host.run({"disc", "--image", (folder / "x.iso").string()}), 0);
    EXPECT_EQ(host.run({"disc", "--image", (folder / "x.cue").string()}), 0);
    EXPECT_EQ(host.images.at(0).path, (folder / "x.iso").string());
    EXPECT_EQ(host.run({"eject", "--image", (folder / "x.bin").string()}), 2);
    EXPECT_THAT(host.err(), HasSubstr("must end in .cue or .iso"));
}

TEST(DiscCommand, ShowsKindStateTimesSizesAndSpeeds) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Drive:   Writer", "Disc:    CD-R, blank", "Used:    00:00:00, 0 KB",
                            "Free:    01:19:57, 702.8 MB", "Speeds:  4x, 24x, 52x"));
}

TEST(DiscCommand, SaysWhatElseCanBeWrittenToTheDisc) {
    TestHost host;
    const auto stateOf = [&](const DiscScript& disc) {
        const auto drive = host.platform.addDrive({.name = "Writer", .disc = disc});
        host.run({"disc"});
        host.platform.unplug(drive);
        return host.outLines().at(1);
    };
    EXPECT_EQ(stateOf({.isBlank = false}), "Disc:    CD-R, written, can be added to");
    EXPECT_EQ(stateOf({.isBlank = false, .isAppendable = false}), "Disc:    CD-R, written");
    EXPECT_EQ(stateOf({.type = DRDeviceMediaTypeDVDRW, .isOverwritable = true}),
              "Disc:    DVD-RW, blank, can be overwritten");
}

TEST(DiscCommand, ADiscThatIsBeingExaminedIsSaidToBe) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .isTransitioning = true});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Drive:   Writer", "Disc:    examining the disc"));
    EXPECT_EQ(host.run({"drives"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Writer: writes CDs; examining the disc"));
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

TEST(DiscCommand, AnEmptyDriveIsAnAnswer) {
    TestHost host;
    host.platform.addDrive({.name = "Writer"});
    EXPECT_EQ(host.run({"disc"}), 0);
    EXPECT_THAT(host.outLines(), ElementsAre("Drive:   Writer", "Disc:    no disc"));
}

TEST(DiscCommand, WithoutADriveThereIsNothingToShow) {
    TestHost host;
    EXPECT_EQ(host.run({"disc"}), 2);
    EXPECT_THAT(host.err(), HasSubstr("there is no drive"));
}

TEST(DiscCommand, ADriveIsChosenByItsName) {
    TestHost host;
    host.platform.addDrive({.name = "One"});
    host.platform.addDrive({.name = "Two", .disc = DiscScript{.type = DRDeviceMediaTypeDVDR}});
    EXPECT_EQ(host.run({"disc"}), 2);
    EXPECT_EQ(host.run({"disc", "--drive", "Two"}), 0);
    EXPECT_THAT(host.out(), HasSubstr("DVD-R, blank"));
}

TEST(EjectCommand, PutsTheDiscOut) {
    TestHost host;
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(host.run({"eject"}), 0);
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_THAT(host.outLines(), ElementsAre("Ejected: Writer"));
}

TEST(EjectCommand, ADriveThatKeepsItsDiscIsAFailure) {
    TestHost host;
    host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(host.run({"eject", "--json"}), 1);
    EXPECT_THAT(host.outLines(), ElementsAre(R"({"event":"eject","name":"Writer","ejected":false})",
                                             R"({"event":"exit","status":1})"));
    EXPECT_THAT(host.err(), HasSubstr("'Writer' did not eject its disc"));
}

TEST(EjectCommand, AnEmptyDriveHasNothingToPutOut) {
    TestHost host;
    host.platform.addDrive({.name = "Writer"});
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.out(), "");
    EXPECT_EQ(host.err(), "quarner: there is no disc in the drive 'Writer'\n");
    host.platform.addDrive({.name = "Loader", .isTransitioning = true});
    EXPECT_EQ(host.run({"eject", "--drive", "Loader"}), 1);
    EXPECT_THAT(host.err(), HasSubstr("'Loader' did not eject its disc"));
}

TEST(EjectCommand, ADriveThatCannotBeUsedIsAFailureWithTheReason) {
    TestHost host;
    host.platform.addDrive({.name = "Writer"}); // a busy drive seems to have no disc
    host.accessProblems["Writer"] = "/dev/sr0 is in use";
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.err(), "quarner: the drive 'Writer' cannot be used: /dev/sr0 is in use\n");
    EXPECT_EQ(host.run({"eject", "--json"}), 1);
    EXPECT_EQ(json::parse(host.outLines().at(0)), (json{{"event", "eject"},
                                                        {"name", "Writer"},
                                                        {"ejected", false},
                                                        {"accessProblem", "/dev/sr0 is in use"}}));
}

TEST(EjectCommand, ADriveThatIsPulledMeanwhileIsSaidToBe) {
    TestHost host;
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    host.platform.fail(ServiceCall::EjectMedia);
    host.platform.onCall(ServiceCall::EjectMedia,
                         [&](const std::string&) { host.platform.unplug(drive); });
    EXPECT_EQ(host.run({"eject"}), 1);
    EXPECT_EQ(host.err(), "quarner: the drive 'Writer' was unplugged\n");
}

/// Runs `watch` and lets things happen one after another, each when the one before was dealt with.
class WatchCommandTest : public testing::Test {
protected:
    int watch(std::vector<std::string> arguments, std::vector<std::function<void()>> happenings) {
        arguments.insert(arguments.begin(), "watch");
        happenings.push_back([this] { host.interrupt(); });
        auto next = happenings.begin();
        host.atEachTurn = [&] {
            if (next != happenings.end())
                (*next++)();
        };
        return host.run(arguments);
    }

    TestHost host;
};

TEST_F(WatchCommandTest, TellsOfDrivesAndDiscsAsTheyComeAndGo) {
    host.platform.addDrive({.name = "Old"});
    std::shared_ptr<ScriptedDrive> drive;
    EXPECT_EQ(watch({}, {[&] { drive = host.platform.plug({.name = "New"}); }, [] {}, [] {},
                         [&] { drive->insert({}); }, [] {}, [] {},
                         [&] { host.platform.unplug(drive); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Old: no disc", "New: appeared", "New: CD-R, blank, 01:19:57 free",
                            "New: disappeared"));
}

TEST_F(WatchCommandTest, TellsProgramsTheCallbacks) {
    std::shared_ptr<ScriptedDrive> drive;
    EXPECT_EQ(watch({"--json"}, {[&] { drive = host.platform.plug({.name = "New"}); }, [] {}, [] {},
                                 [&] { drive->reportChange(); }, [] {}, [] {},
                                 [&] { host.platform.unplug(drive); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre(R"({"event":"deviceDidAppeared","name":"New"})",
                                             R"({"event":"deviceStatusDidChanged","name":"New"})",
                                             R"({"event":"deviceDidDisappeared","name":"New"})",
                                             R"({"event":"exit","status":130})"));
}

TEST_F(WatchCommandTest, OpensNoDriveForWhatItDoesNotTell) {
    const auto drive = host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    EXPECT_EQ(watch({"--json"}, {[&] { drive->reportChange(); }, [] {}, [] {}}), 130);
    EXPECT_EQ(host.platform.calls(ServiceCall::DriveStatus), 0U);
    EXPECT_EQ(host.accessQuestions, 0);
}

TEST_F(WatchCommandTest, SaysOfADriveThatCannotBeUsedWhy) {
    const auto drive = host.platform.addDrive({.name = "Writer"});
    host.accessProblems["Writer"] = "/dev/sr0 is in use";
    EXPECT_EQ(watch({}, {[&] {
                             host.accessProblems["Writer"] = "/dev/sr0 is not yours";
                             drive->reportChange();
                         },
                         [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(),
                ElementsAre("Writer: /dev/sr0 is in use", "Writer: /dev/sr0 is not yours"));
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
    EXPECT_EQ(watch({"--drive", "Two"}, {[&] { one->insert({}); }, [] {}, [] {},
                                         [&] { two->reportChange(); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre("Two: no disc", "Two: no disc"));
}

TEST_F(WatchCommandTest, NothingIsToldOfADriveThatIsGone) {
    const auto drive = host.platform.addDrive({.name = "Old"});
    EXPECT_EQ(watch({}, {[&] { host.platform.unplug(drive); }, [] {}, [] {},
                         [&] { drive->reportChange(); }, [] {}, [] {}}),
              130);
    EXPECT_THAT(host.outLines(), ElementsAre("Old: no disc", "Old: disappeared"));
}

TEST_F(WatchCommandTest, WaitsAlsoOnAMachineWithoutDrives) {
    EXPECT_EQ(watch({}, {}), 130);
    EXPECT_THAT(host.outLines(), ElementsAre("There is no drive yet."));
}

} // namespace
} // namespace quarner::cli
