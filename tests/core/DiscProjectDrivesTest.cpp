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

TEST_F(DiscProjectDrives, ADiscThatLooksLikeTheOneBeforeIsAChange) {
    const DiscDrive before = project->drives().front();
    drive->reportChange();
    settle();
    EXPECT_EQ(project->drives().front().changeCount, before.changeCount + 1);
    EXPECT_NE(project->drives().front(), before);
}

TEST_F(DiscProjectDrives, IsAskedOnceMoreOnRequest) {
    platform.backgroundQueue().hold();
    drive->change([](DriveScript& script) { script.disc->blocksUsed = 7; });
    bool isDone = false;
    project->examine(driveId(), [&] {
        isDone = true;
        EXPECT_EQ(project->drives().front().usedBytes, 7U * 2048);
    });
    EXPECT_FALSE(isDone);
    platform.backgroundQueue().release();
    settle();
    EXPECT_TRUE(isDone);
}

TEST_F(DiscProjectDrives, ARequestIsAnsweredAlsoIfTheDriveIsGone) {
    int answers = 0;
    const auto count = [&] { ++answers; };
    project->examine(4711, count);
    settle();
    EXPECT_EQ(answers, 1);
    platform.backgroundQueue().hold();
    project->examine(driveId(), count);
    platform.unplug(drive);
    settle();
    EXPECT_EQ(answers, 2);
    platform.backgroundQueue().release();
    settle();
    EXPECT_EQ(answers, 2);
}

TEST_F(DiscProjectDrives, IsNoticedToBeGoneWhenItIsExaminedBeforeItsNotificationComes) {
    const DiscDrive::Id gone = driveId();
    platform.fail(ServiceCall::Devices); // lists no drive, and sends no notification
    int calls = 0;
    project->examine(gone, [&] {
        ++calls;
        EXPECT_FALSE(project->drive(gone));
    });
    settle();
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(project->drives(), IsEmpty());
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
}

TEST_F(DiscProjectDrives, SaysWhyADiscWasNotEjected) {
    const auto eject = [&](DiscDrive::Id id) {
        std::optional<std::string> answer;
        project->eject(id, [&](const std::string& problem) { answer = problem; });
        EXPECT_FALSE(answer);
        settle();
        return answer.value_or("no answer");
    };
    EXPECT_EQ(eject(4711), "The drive was unplugged.");
    EXPECT_EQ(eject(driveId()), "");
    EXPECT_EQ(eject(driveId()), "There is no disc in the drive \"Writer\".");
    drive->change([](DriveScript& script) { script.accessProblem = "/dev/sr0 is in use"; });
    EXPECT_EQ(eject(driveId()), "The drive \"Writer\" cannot be used (/dev/sr0 is in use).");
    drive->change([](DriveScript& script) { script.disc = DiscScript(); });
    platform.fail(ServiceCall::EjectMedia);
    EXPECT_EQ(eject(driveId()),
              "The drive \"Writer\" did not eject its disc. A program may be using it.");
}

TEST_F(DiscProjectDrives, AnswersNothingOnceTheProjectIsGone) {
    project->examine(driveId(), [] { FAIL(); });
    project->eject(driveId(), [](const std::string&) { FAIL(); });
    project.reset();
    settle();
}

TEST_F(DiscProjectDrives, KnowsWhichDriveWritesBeforeItHasAnswered) {
    platform.backgroundQueue().hold();
    platform.plug({.name = "Reader", .canWriteCD = false});
    platform.plug({.name = "Second"});
    settle();
    EXPECT_FALSE(project->drives()[1].canWrite);
    EXPECT_TRUE(project->drives()[2].canWrite);
    EXPECT_FALSE(project->drives()[2].isExamined);
    platform.backgroundQueue().release();
    settle();
}

TEST_F(DiscProjectDrives, DescribesADisc) {
    const auto describe = [&](const DiscScript& disc) {
        drive->change([&](DriveScript& script) { script.disc = disc; });
        settle();
        return textForDisc(project->drives().front());
    };
    EXPECT_EQ(describe({}), "CD-R, blank");
    EXPECT_EQ(textForDiscAndFreeTime(project->drives().front()), "CD-R, blank, 01:19:57 free");
    EXPECT_EQ(describe({.isBlank = false}), "CD-R, written, can be added to");
    EXPECT_EQ(describe({.type = DRDeviceMediaTypeCDRW, .isErasable = true}),
              "CD-RW, blank, can be erased");
    EXPECT_EQ(describe({.type = "?"}), "a disc of unknown kind, blank");
    EXPECT_EQ(project->drives().front().speeds, (std::vector<double>{300, 1800, 3900}));
    drive->change([](DriveScript& script) { script.disc.reset(); });
    settle();
    EXPECT_EQ(textForDiscAndFreeTime(project->drives().front()), "no disc");
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
