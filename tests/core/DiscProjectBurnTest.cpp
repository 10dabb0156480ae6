// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>
#include <utility>

#include "quarner/platform/DRErrors.h"
#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Outcome = DiscBurnEnd::Outcome;
using Phase = DiscBurnProgress::Phase;

class DiscProjectBurn : public DiscProjectTest {
protected:
    const DiscBurnEnd& end() {
        settle();
        EXPECT_THAT(observer->burnEnds, SizeIs(1));
        EXPECT_FALSE(project->isBurning());
        return observer->burnEnds.front();
    }
    std::vector<DRError> codes() const {
        std::vector<DRError> codes;
        for (const DiscProblem& problem : project->problems(driveId()))
            codes.push_back(problem.code);
        return codes;
    }
    /// The code of a burn that fails, which `problems` has said before.
    std::optional<DRError> foretoldFailure() {
        settle();
        const std::vector<DRError> before = codes();
        project->burn(driveId());
        const DiscBurnEnd& burn = end();
        EXPECT_EQ(burn.outcome, Outcome::Failed);
        EXPECT_THAT(before, ::testing::Contains(burn.code.value()));
        EXPECT_EQ(burn.text.back(), '.');
        return burn.code;
    }
};

INSTANTIATE_TEST_SUITE_P(, DiscProjectBurn,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         kindName);

TEST_P(DiscProjectBurn, EndsOnceWithItsOutcome) {
    platform.playBurns();
    compile({"a.mp3", "b.mp3"});
    EXPECT_THAT(codes(), IsEmpty());
    EXPECT_TRUE(project->burn(driveId(), "Mix"));
    EXPECT_TRUE(project->isBurning());
    EXPECT_EQ(end().outcome, Outcome::Done);
    EXPECT_EQ(end().text, "The disc is burnt and verified.");
    EXPECT_FALSE(end().code);
}

TEST_P(DiscProjectBurn, TheOverallFractionNeverFallsAndEndsAtOne) {
    platform.playBurns({.progressReports = 20});
    compile({"a.mp3", "b.mp3", "c.mp3"});
    project->burn(driveId());
    settle();
    double last = 0;
    for (const DiscBurnProgress& progress : observer->burn) {
        EXPECT_GE(progress.fraction, last);
        EXPECT_LE(progress.fraction, 1);
        last = progress.fraction;
    }
    EXPECT_EQ(last, 1);
    EXPECT_GT(observer->burn.size(), 40U);
}

TEST_P(DiscProjectBurn, GoesThroughItsPhasesInOrder) {
    platform.playBurns();
    compile({"a.mp3", "b.mp3"});
    project->burn(driveId());
    settle();
    std::vector<Phase> phases;
    for (const DiscBurnProgress& progress : observer->burn) {
        EXPECT_NE(progress.text, "");
        if (phases.empty() || phases.back() != progress.phase)
            phases.push_back(progress.phase);
    }
    EXPECT_THAT(phases, ElementsAre(Phase::Preparing, Phase::Writing, Phase::Closing,
                                    Phase::Finishing, Phase::Verifying));
}

TEST_P(DiscProjectBurn, ReportsEachNewFractionOfAPhase) {
    compile({"a.mp3"});
    project->burn(driveId());
    const auto burn = platform.lastBurn();
    burn->post({.state = DRStatusStateTrackWrite, .fraction = 0.25, .track = 1, .of = 1});
    settle();
    EXPECT_EQ(observer->burn.back().phaseFraction, 0.25);
    burn->post({.state = DRStatusStateTrackWrite, .fraction = 0.5, .track = 1, .of = 1});
    settle();
    EXPECT_EQ(observer->burn.back().phaseFraction, 0.5);
    burn->post({.state = DRStatusStateVerifying, .fraction = 0.75});
    settle();
    EXPECT_EQ(observer->burn.back().phaseFraction, 0.75);
    EXPECT_EQ(observer->burn.back().track, 0);
    burn->post({.state = DRStatusStateDone});
    EXPECT_EQ(end().outcome, Outcome::Done);
}

TEST_P(DiscProjectBurn, ReportsThatTheProblemsOfItsDriveChange) {
    compile({"a.mp3"});
    int changes = observer->capacityChanges;
    project->burn(driveId());
    EXPECT_GT(observer->capacityChanges, changes);
    EXPECT_THAT(codes(), ElementsAre(DRError::DeviceBusy));
    changes = observer->capacityChanges;
    platform.lastBurn()->post({.state = DRStatusStateFailed});
    end();
    EXPECT_GT(observer->capacityChanges, changes);
    EXPECT_THAT(codes(), IsEmpty());
}

TEST_P(DiscProjectBurn, CanBeCancelled) {
    compile({"a.mp3"});
    project->burn(driveId());
    project->cancelBurn();
    EXPECT_EQ(end().outcome, Outcome::Canceled);
    EXPECT_EQ(end().text, "The burn was cancelled.");
}

/// Does something in the first progress of a burn, before the burner has begun.
struct AtFirstProgress : DiscProjectObserver {
    explicit AtFirstProgress(std::function<void()> work) : action(std::move(work)) {}
    void burnProgress(const DiscBurnProgress& /*progress*/) override {
        if (action)
            std::exchange(action, nullptr)();
    }
    std::function<void()> action;
};

TEST_P(DiscProjectBurn, ADestroyedProjectDoesNotBeginTheBurn) {
    compile({"a.mp3"});
    const auto destroyer = std::make_shared<AtFirstProgress>([this] { project.reset(); });
    project->addObserver(destroyer);
    project->burn(driveId());
    settle();
    EXPECT_THAT(platform.burns(), IsEmpty());
}

TEST_P(DiscProjectBurn, CanBeCancelledBeforeTheBurnerHasBegun) {
    compile({"a.mp3"});
    const auto canceller = std::make_shared<AtFirstProgress>([this] { project->cancelBurn(); });
    project->addObserver(canceller);
    project->burn(driveId());
    EXPECT_EQ(end().outcome, Outcome::Canceled);
    EXPECT_THAT(platform.burns(), IsEmpty());
}

/// Cancels or destroys in the first call of the delegate, in which the burner knows no burn yet.
struct AtStart : QuarnDelegate {
    explicit AtStart(std::function<void()> work) : action(std::move(work)) {}
    void burnProgressDidStarted() override { action(); }
    std::function<void()> action;
};

TEST_P(DiscProjectBurn, CanBeCancelledInTheFirstCallOfTheDelegate) {
    platform.playBurns();
    compile({"a.mp3"});
    const auto delegate = std::make_shared<AtStart>([this] { project->cancelBurn(); });
    project->setDelegate(delegate);
    project->burn(driveId());
    EXPECT_EQ(end().outcome, Outcome::Canceled);
}

TEST_P(DiscProjectBurn, ADestroyedProjectCancelsTheBurnThatItsDelegateSawStart) {
    compile({"a.mp3"});
    const auto delegate = std::make_shared<AtStart>([this] { project.reset(); });
    project->setDelegate(delegate);
    project->burn(driveId());
    settle();
    for (const auto& burn : platform.burns())
        EXPECT_TRUE(burn->isAborted());
}

TEST_P(DiscProjectBurn, AWrittenDiscEndsTheBurnAsItsProblemSays) {
    drive->change([](DriveScript& script) {
        script.disc = DiscScript{.isBlank = false, .spaceFree = DRMSF::msf(), .blocksFree = 0};
    });
    compile({"a.mp3"});
    EXPECT_EQ(foretoldFailure(), DRError::MediaNotWritable);
    EXPECT_EQ(observer->burnEnds.front().text, "The disc cannot be written.");
}

TEST_P(DiscProjectBurn, OnlyOneBurnsAtATime) {
    compile({"a.mp3"});
    EXPECT_TRUE(project->burn(driveId()));
    EXPECT_FALSE(project->burn(driveId()));
    EXPECT_THAT(codes(), ElementsAre(DRError::DeviceBusy));
    project->cancelBurn();
    EXPECT_EQ(end().outcome, Outcome::Canceled);
}

TEST_P(DiscProjectBurn, AFailureHasItsCodeItsTextAndAdvice) {
    platform.playBurns({.failsAt = 0.5, .code = DRError::SourceMissing});
    compile({"a.mp3"});
    project->burn(driveId());
    EXPECT_EQ(end().outcome, Outcome::Failed);
    EXPECT_EQ(end().code, DRError::SourceMissing);
    EXPECT_EQ(end().text, "A source file is gone or unreadable.");
    EXPECT_EQ(end().advice, "Restore the file and try again.");
}

TEST_P(DiscProjectBurn, ADestroyedProjectCancelsItsBurn) {
    compile({"a.mp3"});
    project->burn(driveId());
    const auto reports = observer->burn.size();
    project.reset();
    settle();
    EXPECT_TRUE(platform.lastBurn()->isAborted());
    EXPECT_THAT(observer->burnEnds, IsEmpty());
    EXPECT_EQ(observer->burn.size(), reports);
}

TEST_P(DiscProjectBurn, TheNextBurnStartsInsideTheEndOfTheLast) {
    platform.playBurns();
    compile({"a.mp3"});
    bool hasBegun = false;
    observer->onCall = [&] {
        if (!project->isBurning() && !observer->burn.empty() && !std::exchange(hasBegun, true)) {
            EXPECT_TRUE(project->burn(driveId()));
        }
    };
    project->burn(driveId());
    settle();
    EXPECT_THAT(observer->burnEnds, SizeIs(2));
    EXPECT_THAT(observer->burnEnds, Each(Field(&DiscBurnEnd::outcome, Outcome::Done)));
}

// --- Problems are those that the burn ends with ---

TEST_P(DiscProjectBurn, NothingToBurnIsAProblem) {
    platform.playBurns();
    EXPECT_EQ(foretoldFailure(), DRError::EmptyLayout);
}

TEST_P(DiscProjectBurn, NoDiscIsAProblem) {
    platform.playBurns();
    compile({"a.mp3"});
    drive->ejectMedia();
    EXPECT_EQ(foretoldFailure(), DRError::MediaNotPresent);
    EXPECT_EQ(end().text, "There is no disc in the drive.");
    EXPECT_EQ(end().advice, "Insert a blank CD-R or CD-RW.");
}

TEST_P(DiscProjectBurn, ADiscThatIsTooSmallIsAProblemInNumbers) {
    platform.playBurns();
    compile({"a.mp3"});
    drive->change([](DriveScript& script) { script.disc->blocksFree = 10; });
    settle();
    const std::string text = project->problems(driveId()).front().text;
    EXPECT_THAT(text, HasSubstr(GetParam() == DiscProject::Kind::Audio ? "00:00:12" : "3.8 MB"));
    EXPECT_EQ(foretoldFailure(), DRError::MediaTooSmall);
}

TEST_P(DiscProjectBurn, ADriveThatIsGoneIsAProblem) {
    compile({"a.mp3"});
    const DiscDrive::Id gone = driveId();
    platform.unplug(drive);
    settle();
    EXPECT_THAT(project->problems(gone),
                ElementsAre(Field(&DiscProblem::code, DRError::DeviceVanished)));
    project->burn(gone);
    EXPECT_EQ(end().code, DRError::DeviceVanished);
}

TEST_P(DiscProjectBurn, WhatTheDriveCannotWriteIsAProblem) {
    compile({"a.mp3"});
    drive->change([](DriveScript& script) { script.disc->type = DRDeviceMediaTypeDVDR; });
    settle();
    EXPECT_THAT(codes(), ElementsAre(DRError::WrongMedia));
    drive->change([](DriveScript& script) {
        script.disc->type = DRDeviceMediaTypeCDR;
        script.disc->isBlank = false;
    });
    settle();
    EXPECT_THAT(codes(), ElementsAre(DRError::MediaNotWritable));
    drive->change([](DriveScript& script) { script.disc->isErasable = true; });
    settle();
    EXPECT_THAT(codes(), IsEmpty());
}

TEST_P(DiscProjectBurn, ADiscThatIsBeingExaminedIsSaidToBe) {
    compile({"a.mp3"});
    drive->change([](DriveScript& script) {
        script.disc.reset();
        script.isTransitioning = true;
    });
    settle();
    EXPECT_EQ(project->problems(driveId()).front().text, "The drive still examines the disc.");
}

TEST_P(DiscProjectBurn, ADriveThatCannotBeUsedIsAProblemWithItsReason) {
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

/// A burn fails with each code that a recorder may give.
TEST_P(DiscProjectBurn, EachFailureEndsWithWhatItsCodeMeans) {
    compile({"a.mp3"});
    for (const DRError code :
         {DRError::DeviceBusy, DRError::DeviceVanished, DRError::MediaNotPresent,
          DRError::MediaNotWritable, DRError::MediaTooSmall, DRError::WrongMedia,
          DRError::EmptyLayout, DRError::TooManyTracks, DRError::DeviceNotPermitted,
          DRError::SourceMissing, DRError::SourceChanged, DRError::SourceUnreadable,
          DRError::NoSpace, DRError::PermissionDenied, DRError::WriteFailed,
          DRError::ReadBackFailed, DRError::VerifyFailed, DRError::Internal}) {
        observer->burnEnds.clear();
        platform.playBurns({.failsAt = 0.4, .code = code});
        project->burn(driveId());
        EXPECT_EQ(end().outcome, Outcome::Failed);
        EXPECT_EQ(end().code, code);
        EXPECT_EQ(end().text, problemForCode(signedCode(code)).text);
        drive->ejectMedia();
        drive->insert({});
        settle();
    }
}

class AudioProjectBurn : public AudioProjectTest {};

TEST_F(AudioProjectBurn, AHundredTracksAreAProblem) {
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

TEST_F(AudioProjectBurn, CapacityIsTheTimeOfTracksAndPauses) {
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

TEST_F(AudioProjectBurn, WithoutADriveOnlyTheUsedTimeIsKnown) {
    compile({"a.mp3"}, 100);
    const DiscCapacity capacity = project->capacity();
    EXPECT_EQ(capacity.used, 102U);
    EXPECT_EQ(capacity.total, 0U);
    EXPECT_FALSE(capacity.isDiscKnown);
    EXPECT_TRUE(capacity.fits);
}

class DataProjectBurn : public DataProjectTest {};

TEST_F(DataProjectBurn, TheFileSystemCounts) {
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

TEST_F(DataProjectBurn, TheFilesAloneCountUntilTheFileSystemIsKnown) {
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
