// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Problems are what the burn ends with.
class DiscProjectProblems : public DiscProjectTest {
protected:
    /// The code of a burn that fails, which `problems` has said before.
    std::optional<DRError> foretoldFailure() {
        settle();
        const std::vector<DRError> before = problemCodes();
        project->burn(driveId());
        const DiscBurnEnd burn = burnEnd();
        EXPECT_EQ(burn.outcome, DiscBurnEnd::Outcome::Failed);
        EXPECT_TRUE(burn.code);
        EXPECT_THAT(before, Contains(burn.code.value_or(DRError::Internal)));
        EXPECT_TRUE(burn.text.ends_with('.')) << burn.text;
        return burn.code;
    }
};

INSTANTIATE_TEST_SUITE_P(, DiscProjectProblems,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         kindName);

TEST_P(DiscProjectProblems, NothingToBurnIsAProblem) {
    platform.playBurns();
    EXPECT_EQ(foretoldFailure(), DRError::EmptyLayout);
}

TEST_P(DiscProjectProblems, NoDiscIsAProblem) {
    platform.playBurns();
    compile({"a.mp3"});
    drive->ejectMedia();
    EXPECT_EQ(foretoldFailure(), DRError::MediaNotPresent);
    EXPECT_EQ(burnEnd().text, "There is no disc in the drive.");
    EXPECT_EQ(burnEnd().advice, "Insert a blank CD-R or CD-RW.");
}

TEST_P(DiscProjectProblems, ADiscThatIsTooSmallIsAProblemInNumbers) {
    platform.playBurns();
    compile({"a.mp3"});
    drive->change([](DriveScript& script) { script.disc->blocksFree = 10; });
    settle();
    const std::string text = project->problems(driveId()).front().text;
    EXPECT_THAT(text, HasSubstr(GetParam() == DiscProject::Kind::Audio ? "00:00:12" : "3.8 MB"));
    EXPECT_EQ(foretoldFailure(), DRError::MediaTooSmall);
}

TEST_P(DiscProjectProblems, ADriveThatIsGoneIsAProblem) {
    compile({"a.mp3"});
    const DiscDrive::Id gone = driveId();
    platform.unplug(drive);
    settle();
    EXPECT_THAT(project->problems(gone),
                ElementsAre(Field(&DiscProblem::code, DRError::DeviceVanished)));
    project->burn(gone);
    EXPECT_EQ(burnEnd().code, DRError::DeviceVanished);
}

TEST_P(DiscProjectProblems, WhatTheDriveCannotWriteIsAProblem) {
    compile({"a.mp3"});
    drive->change([](DriveScript& script) { script.disc->type = DRDeviceMediaTypeDVDR; });
    settle();
    EXPECT_THAT(problemCodes(), ElementsAre(DRError::WrongMedia));
    drive->change([](DriveScript& script) {
        script.disc->type = DRDeviceMediaTypeCDR;
        script.disc->isBlank = false;
    });
    settle();
    EXPECT_THAT(problemCodes(), ElementsAre(DRError::MediaNotWritable));
    drive->change([](DriveScript& script) { script.disc->isErasable = true; });
    settle();
    EXPECT_THAT(problemCodes(), IsEmpty());
}

TEST_P(DiscProjectProblems, ADriveThatCannotWriteIsAProblemWhateverItsDisc) {
    platform.playBurns();
    compile({"a.mp3"});
    platform.unplug(drive);
    drive = platform.plug({.name = "Reader", .canWriteCD = false, .disc = DiscScript{}});
    EXPECT_EQ(foretoldFailure(), DRError::MediaNotWritable);
    EXPECT_THAT(platform.burns(), IsEmpty());
    const DiscProblem problem = project->problems(driveId()).front();
    EXPECT_EQ(problem.text, "The drive \"Reader\" cannot write CDs.");
    EXPECT_EQ(problem.advice, "Use a drive that writes CDs.");
    EXPECT_EQ(burnEnd().text, problem.text);
    EXPECT_EQ(burnEnd().advice, problem.advice);
    drive->ejectMedia();
    settle();
    EXPECT_EQ(project->problems(driveId()).front(), problem);
}

TEST_P(DiscProjectProblems, ADiscThatIsBeingExaminedIsSaidToBe) {
    compile({"a.mp3"});
    drive->change([](DriveScript& script) {
        script.disc.reset();
        script.isTransitioning = true;
    });
    settle();
    EXPECT_EQ(project->problems(driveId()).front().text, "The drive still examines the disc.");
}

TEST_P(DiscProjectProblems, ADriveThatCannotBeUsedIsAProblemWithItsReason) {
    compile({"a.mp3"});
    drive->change([](DriveScript& script) {
        script.disc.reset();
        script.accessProblem = "/dev/sr0 is in use";
    });
    settle();
    const DiscProblem problem = project->problems(driveId()).front();
    EXPECT_EQ(problem.code, DRError::DeviceNotPermitted);
    EXPECT_EQ(problem.text, "The drive \"Writer\" cannot be used (/dev/sr0 is in use).");
}

TEST_P(DiscProjectProblems, AWrittenDiscEndsTheBurnAsItsProblemSays) {
    drive->change([](DriveScript& script) {
        script.disc = DiscScript{.isBlank = false, .spaceFree = DRMSF::msf(), .blocksFree = 0};
    });
    compile({"a.mp3"});
    EXPECT_EQ(foretoldFailure(), DRError::MediaNotWritable);
    EXPECT_EQ(observer->burnEnds.front().text, "The disc cannot be written.");
}

class AudioProjectCapacity : public AudioProjectTest {};

TEST_F(AudioProjectCapacity, AHundredTracksAreAProblem) {
    std::vector<std::string> many;
    for (int i = 0; i < 100; ++i)
        many.push_back(std::to_string(i) + ".mp3");
    compile(many);
    const auto problems = project->problems(driveId());
    ASSERT_THAT(problems, SizeIs(1));
    EXPECT_EQ(problems.front().code, DRError::TooManyTracks);
    EXPECT_FALSE(project->capacity(driveId()).fits);
    EXPECT_FALSE(project->capacity().fits);
    project->remove({99});
    EXPECT_THAT(project->problems(driveId()), IsEmpty());
    EXPECT_TRUE(project->capacity(driveId()).fits);
}

TEST_F(AudioProjectCapacity, CapacityIsTheTimeOfTracksAndPauses) {
    compile({"a.mp3", "b.mp3"}, 100);
    const DiscCapacity capacity = project->capacity(driveId());
    EXPECT_EQ(capacity.used, 204U);
    EXPECT_EQ(capacity.usedText, "00:03:24");
    EXPECT_EQ(capacity.total, 359'847U / 75);
    EXPECT_EQ(capacity.totalText, "01:19:57");
    EXPECT_EQ(capacity.free, capacity.total - capacity.used);
    EXPECT_EQ(capacity.freeText, "01:16:33");
    EXPECT_EQ(capacity.count, 2U);
    EXPECT_TRUE(capacity.isDiscKnown && capacity.fits && capacity.isExact);
}

TEST_F(AudioProjectCapacity, WithoutADriveOnlyTheUsedTimeIsKnown) {
    compile({"a.mp3"}, 100);
    const DiscCapacity capacity = project->capacity();
    EXPECT_EQ(capacity.used, 102U);
    EXPECT_EQ(capacity.total, 0U);
    EXPECT_FALSE(capacity.isDiscKnown);
    EXPECT_TRUE(capacity.fits);
}

class DataProjectCapacity : public DataProjectTest {};

TEST_F(DataProjectCapacity, TheFileSystemCounts) {
    platform.setDataEstimate(359'848);
    compile({"a.mp3"});
    EXPECT_TRUE(project->capacity(driveId()).isExact);
    EXPECT_FALSE(project->capacity(driveId()).fits);
    EXPECT_EQ(project->problems(driveId()).front().code, DRError::MediaTooSmall);
    platform.setDataEstimate(359'847);
    compile({"b.mp3"});
    EXPECT_TRUE(project->capacity(driveId()).fits);
    EXPECT_THAT(project->problems(driveId()), IsEmpty());
}

TEST_F(DataProjectCapacity, TheFilesAloneCountUntilTheFileSystemIsKnown) {
    compile({"a.mp3"});
    platform.setDataEstimate(10'000);
    platform.backgroundQueue().hold();
    project->remove({0});
    EXPECT_FALSE(project->capacity(driveId()).isExact);
    EXPECT_EQ(project->capacity(driveId()).used, 0U);
    const int changes = observer->capacityChanges;
    platform.backgroundQueue().release();
    settle();
    EXPECT_TRUE(project->capacity(driveId()).isExact);
    EXPECT_GT(observer->capacityChanges, changes);
}

} // namespace
} // namespace quarner::testing
