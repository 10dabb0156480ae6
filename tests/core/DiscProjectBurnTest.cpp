// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>
#include <utility>

#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Outcome = DiscBurnEnd::Outcome;
using Phase = DiscBurnProgress::Phase;

class DiscProjectBurn : public DiscProjectTest {};

INSTANTIATE_TEST_SUITE_P(, DiscProjectBurn,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         kindName);

TEST_P(DiscProjectBurn, EndsOnceWithItsOutcome) {
    platform.playBurns();
    compile({"a.mp3", "b.mp3"});
    EXPECT_THAT(problemCodes(), IsEmpty());
    EXPECT_TRUE(project->burn(driveId(), "Mix"));
    EXPECT_TRUE(project->isBurning());
    EXPECT_EQ(burnEnd().outcome, Outcome::Done);
    EXPECT_EQ(burnEnd().text, "The disc is burnt and verified.");
    EXPECT_FALSE(burnEnd().code);
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
    EXPECT_EQ(burnEnd().outcome, Outcome::Done);
}

TEST_P(DiscProjectBurn, ReportsThatTheProblemsOfItsDriveChange) {
    compile({"a.mp3"});
    int changes = observer->capacityChanges;
    project->burn(driveId());
    EXPECT_GT(observer->capacityChanges, changes);
    EXPECT_THAT(problemCodes(), ElementsAre(DRError::DeviceBusy));
    changes = observer->capacityChanges;
    platform.lastBurn()->post({.state = DRStatusStateFailed});
    burnEnd();
    EXPECT_GT(observer->capacityChanges, changes);
    EXPECT_THAT(problemCodes(), IsEmpty());
}

TEST_P(DiscProjectBurn, CanBeCancelled) {
    compile({"a.mp3"});
    project->burn(driveId());
    project->cancelBurn();
    EXPECT_EQ(burnEnd().outcome, Outcome::Canceled);
    EXPECT_EQ(burnEnd().text, "The burn was cancelled.");
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
    EXPECT_EQ(burnEnd().outcome, Outcome::Canceled);
    EXPECT_THAT(platform.burns(), IsEmpty());
}

TEST_P(DiscProjectBurn, IsNotCancelledWithTheOneBefore) {
    compile({"a.mp3"});
    project->burn(driveId());
    project->cancelBurn();
    EXPECT_EQ(burnEnd().outcome, Outcome::Canceled);
    observer->burnEnds.clear();
    platform.playBurns();
    project->burn(driveId());
    EXPECT_EQ(burnEnd().outcome, Outcome::Done);
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
    EXPECT_EQ(burnEnd().outcome, Outcome::Canceled);
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

TEST_P(DiscProjectBurn, OnlyOneBurnsAtATime) {
    compile({"a.mp3"});
    EXPECT_TRUE(project->burn(driveId()));
    EXPECT_FALSE(project->burn(driveId()));
    EXPECT_THAT(problemCodes(), ElementsAre(DRError::DeviceBusy));
    project->cancelBurn();
    EXPECT_EQ(burnEnd().outcome, Outcome::Canceled);
}

TEST_P(DiscProjectBurn, AFailureHasItsCodeItsTextAndAdvice) {
    platform.playBurns({.failsAt = 0.5, .code = DRError::SourceMissing});
    compile({"a.mp3"});
    project->burn(driveId());
    EXPECT_EQ(burnEnd().outcome, Outcome::Failed);
    EXPECT_EQ(burnEnd().code, DRError::SourceMissing);
    EXPECT_EQ(burnEnd().text, "A source file is gone or unreadable.");
    EXPECT_EQ(burnEnd().advice, "Restore the file and try again.");
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

/// Burns once more in the first report of a change that comes when a burn is over.
struct BurnsAgain : DiscProjectObserver {
    explicit BurnsAgain(DiscProject& burning) : project(burning) {}
    void burnProgress(const DiscBurnProgress& /*progress*/) override {
        if (events.empty() || events.back() != "progress")
            events.emplace_back("progress");
    }
    void burnEnded(const DiscBurnEnd& /*end*/) override { events.emplace_back("ended"); }
    void capacityChanged() override {
        if (!events.empty() && !project.isBurning() && !std::exchange(hasBegun, true)) {
            events.emplace_back("burns again");
            EXPECT_TRUE(project.burn(project.drives().front().id));
        }
    }
    DiscProject& project;
    bool hasBegun = false;
    std::vector<std::string> events;
};

TEST_P(DiscProjectBurn, ABurnThatStartsInCapacityChangedFollowsTheEndOfTheLast) {
    platform.playBurns();
    compile({"a.mp3"});
    const auto again = std::make_shared<BurnsAgain>(*project);
    project->addObserver(again);
    project->burn(driveId());
    settle();
    EXPECT_THAT(again->events,
                ElementsAre("progress", "ended", "burns again", "progress", "ended"));
}

/// A burn fails with each code that a recorder may give.
TEST_P(DiscProjectBurn, EachFailureEndsWithWhatItsCodeMeans) {
    compile({"a.mp3"});
    for (const DRError code :
         {DRError::DeviceBusy,       DRError::DeviceVanished, DRError::MediaNotPresent,
          DRError::MediaNotWritable, DRError::MediaTooSmall,  DRError::WrongMedia,
          DRError::EmptyLayout,      DRError::TooManyTracks,  DRError::DeviceNotPermitted,
          DRError::DeviceHanging,    DRError::SourceMissing,  DRError::SourceChanged,
          DRError::SourceUnreadable, DRError::NoSpace,        DRError::PermissionDenied,
          DRError::WriteFailed,      DRError::ReadBackFailed, DRError::VerifyFailed,
          DRError::FolderMissing,    DRError::Internal}) {
        observer->burnEnds.clear();
        platform.playBurns({.failsAt = 0.4, .code = code});
        project->burn(driveId());
        EXPECT_EQ(burnEnd().outcome, Outcome::Failed);
        EXPECT_EQ(burnEnd().code, code);
        EXPECT_EQ(burnEnd().text, problemForCode(signedCode(code)).text);
        drive->ejectMedia();
        drive->insert({});
        settle();
    }
}

} // namespace
} // namespace quarner::testing
