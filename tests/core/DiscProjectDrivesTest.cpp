// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class DiscProjectDrives : public AudioProjectTest {};

TEST_F(DiscProjectDrives, ADriveTellsWhatItAndItsDiscAreLike) {
    const DiscDrive found = project->drives().front();
    EXPECT_EQ(found.name, "Writer");
    EXPECT_TRUE(found.isExamined && found.canWrite && found.hasDisc && found.isCD);
    EXPECT_TRUE(found.isBlank && found.isAppendable && found.isWritableDisc());
    EXPECT_FALSE(found.isErasable || found.isOverwritable || found.isLoading);
    EXPECT_EQ(found.freeBytes, 359'847U * 2048);
    EXPECT_EQ(found.freeSeconds, 359'847U / 75);
    EXPECT_EQ(found.problem, "");
    EXPECT_EQ(project->drive(found.id), found);
}

TEST_F(DiscProjectDrives, TwoDrivesOfOneNameAreTwoDrives) {
    const auto twin = platform.plug({.name = "Writer"});
    settle();
    ASSERT_THAT(project->drives(), SizeIs(2));
    EXPECT_NE(project->drives()[0].id, project->drives()[1].id);
    EXPECT_FALSE(project->drives()[1].hasDisc);
    EXPECT_EQ(project->driveNamed("Writer"), project->drives()[1].id);
    EXPECT_FALSE(project->driveNamed("Reader"));
}

TEST_F(DiscProjectDrives, ADriveKeepsItsIdentityUntilItIsUnplugged) {
    const DiscDrive::Id first = driveId();
    platform.plug({.name = "Other"});
    settle();
    EXPECT_EQ(driveId(), first);
    platform.unplug(drive);
    settle();
    EXPECT_THAT(project->drives(), ElementsAre(Field(&DiscDrive::name, "Other")));
    EXPECT_FALSE(project->drive(first));
    drive = platform.plug({.name = "Writer"});
    settle();
    EXPECT_NE(project->drives().back().id, first);
}

TEST_F(DiscProjectDrives, AChangedDiscIsReported) {
    const int before = observer->driveChanges;
    const int capacityBefore = observer->capacityChanges;
    drive->ejectMedia();
    settle();
    EXPECT_FALSE(project->drives().front().hasDisc);
    EXPECT_GT(observer->driveChanges, before);
    EXPECT_GT(observer->capacityChanges, capacityBefore);
}

TEST_F(DiscProjectDrives, AChangeThatShowsNothingIsNotReported) {
    const int before = observer->driveChanges;
    drive->reportChange();
    settle();
    EXPECT_EQ(observer->driveChanges, before);
}

TEST_F(DiscProjectDrives, ADriveIsUnknownUntilItHasAnswered) {
    platform.backgroundQueue().hold();
    platform.plug({.name = "Slow"});
    settle();
    EXPECT_FALSE(project->drives().back().isExamined);
    EXPECT_EQ(project->drives().back().name, "Slow");
    EXPECT_FALSE(project->capacity(project->drives().back().id).isDiscKnown);
    platform.backgroundQueue().release();
    settle();
    EXPECT_TRUE(project->drives().back().isExamined);
}

TEST_F(DiscProjectDrives, AChangeDuringAQuestionIsAskedForAgain) {
    platform.backgroundQueue().hold();
    drive->reportChange();
    settle();
    drive->ejectMedia();
    settle();
    EXPECT_EQ(platform.backgroundQueue().waiting(), 1U) << "one question at a time";
    bool hasChanged = false;
    platform.onCall(ServiceCall::DriveInfo, [&](const std::string&) {
        if (!std::exchange(hasChanged, true))
            drive->insert(DiscScript{.blocksFree = 1000});
    });
    platform.backgroundQueue().release();
    settle();
    EXPECT_EQ(project->drives().front().freeBytes, 1000U * 2048);
}

TEST_F(DiscProjectDrives, EjectsInTheBackground) {
    platform.backgroundQueue().hold();
    project->eject(driveId());
    EXPECT_TRUE(drive->mediaIsPresent());
    platform.backgroundQueue().release();
    settle();
    EXPECT_FALSE(drive->mediaIsPresent());
    project->eject(4711);
}

TEST_F(DiscProjectDrives, ADestroyedProjectLeavesTheDrivesAlone) {
    project.reset();
    const int before = observer->driveChanges;
    platform.plug({.name = "Other"});
    drive->ejectMedia();
    settle();
    EXPECT_EQ(observer->driveChanges, before);
}

} // namespace
} // namespace quarner::testing
