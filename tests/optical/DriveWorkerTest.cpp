// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <signal.h>

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/optical/DriveWorker.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tests/optical/Workers.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using Clock = std::chrono::steady_clock;
using testing::AnyOf;

namespace operation {
using namespace quarner::operation;
constexpr std::uint8_t synchronize = 0x35;
constexpr std::uint8_t readContents = 0x43;
constexpr std::uint8_t getConfiguration = 0x46;
} // namespace operation

/// A process that has a drive open and something that goes wrong with it.
class TheProcessOfADrive : public testing::Test, public OpticalStage {
protected:
    ~TheProcessOfADrive() override { DriveWorker::scaleTimeouts(1); }

    /// Sends a signal to the process at the `number`th command, from 1.
    void signalAt(unsigned number, int signal) {
        auto seen = std::make_shared<std::atomic<unsigned>>(0);
        recorder->setCommandHook([=](std::uint8_t) {
            if (++*seen == number)
                signalWorkers(signal);
        });
    }
    void signalAtOperation(std::uint8_t wanted, int signal) {
        auto isDone = std::make_shared<std::atomic<bool>>(false);
        recorder->setCommandHook([=](std::uint8_t sent) {
            if (sent == wanted && !isDone->exchange(true))
                signalWorkers(signal);
        });
    }
    void expectAsGoodAsNew() {
        recorder->resume();
        recorder->setCommandHook({});
        DriveWorker::scaleTimeouts(1);
        EXPECT_TRUE(waitForNoWorkers());
        expectReleased();
        insert(Medium::blankCDR());
        const auto log = burn(audio({300}));
        EXPECT_TRUE(log->isDone()) << log->info();
        expectReleased();
    }
    /// Burns a disc, and calls `act` once the drive hangs in a command.
    std::unique_ptr<BurnLog> burnThatHangsAt(std::uint8_t wanted, const DRLayout& layout,
                                             const std::function<void(DRBurn&)>& act) {
        recorder->hangAt(wanted);
        const auto burning = makeBurn();
        auto log = observe(burning);
        burning->setProperties({{DRBurnOverwriteDiscKey, true}});
        burning->writeLayout(layout);
        EXPECT_TRUE(loops->runUntil([&] { return recorder->isHanging(); }));
        act(*burning);
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        return log;
    }
};

TEST_F(TheProcessOfADrive, IsKilledAtWhateverCommandOfABurnAndLeavesTheDriveFree) {
    const DRLayout layout = audio({300});
    bool isDone = false;
    unsigned tries = 0;
    for (unsigned number = 1; !isDone; number += 4, ++tries) {
        SCOPED_TRACE(number);
        insert(Medium::blankCDR());
        signalAt(number, SIGKILL);
        const auto log = burn(layout);
        isDone = log->isDone();
        EXPECT_EQ(log->code(), isDone ? 0 : codeOf(DRError::Internal)) << log->info();
        EXPECT_TRUE(waitForNoWorkers());
        expectReleased();
    }
    EXPECT_GT(tries, 20U);
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, CrashesInTheMidstOfWritingAndTheNextBurnWorks) {
    signalAtOperation(operation::write, SIGSEGV);
    EXPECT_EQ(burn(data(2'000'000))->code(), codeOf(DRError::Internal));
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, IsKilledInAQuestionThatThenFindsNoDisc) {
    signalAt(3, SIGKILL);
    EXPECT_FALSE(drive->mediaIsPresent());
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, ThatIsStoppedFailsTheBurnInTimeAndIsKilled) {
    for (const std::uint8_t wanted :
         {operation::sendCueSheet, operation::write, operation::readContents, operation::readCD}) {
        SCOPED_TRACE(int(wanted));
        insert(Medium::blankCDR());
        DriveWorker::scaleTimeouts(0.01);
        signalAtOperation(wanted, SIGSTOP);
        EXPECT_EQ(burn(audio({600}))->code(), codeOf(DRError::DeviceHanging));
        expectAsGoodAsNew();
    }
}

TEST_F(TheProcessOfADrive, ThatIsStoppedAlsoHearsNoQuestion) {
    DriveWorker::scaleTimeouts(0.02);
    signalAt(2, SIGSTOP);
    EXPECT_FALSE(drive->mediaIsPresent());
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, OfADriveThatHangsIsKilledWhenTheBurnIsCancelled) {
    for (const std::uint8_t wanted :
         {operation::sendCueSheet, operation::write, operation::synchronize, operation::readCD}) {
        SCOPED_TRACE(int(wanted));
        insert(Medium::blankCDR());
        DriveWorker::scaleTimeouts(0.1);
        const auto log =
            burnThatHangsAt(wanted, audio({600}), [](DRBurn& burning) { burning.abort(); });
        EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
        expectAsGoodAsNew();
    }
}

TEST_F(TheProcessOfADrive, OfADriveThatHangsInBlankingIsKilledWhenTheBurnIsCancelled) {
    DriveWorker::scaleTimeouts(0.1);
    insert(rewritable());
    const auto log =
        burnThatHangsAt(operation::blank, data(100'000), [](DRBurn& burning) { burning.abort(); });
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, OfADriveThatHangsEndsTheBurnWithinFiveSeconds) {
    Clock::time_point begin;
    const auto log = burnThatHangsAt(operation::write, audio({600}), [&](DRBurn& burning) {
        begin = Clock::now();
        burning.abort();
    });
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled));
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, OfADriveThatHungInABurnIsNotAskedAgainAtOnce) {
    DriveWorker::scaleTimeouts(0.05);
    burnThatHangsAt(operation::write, audio({600}), [](DRBurn& burning) { burning.abort(); });
    recorder->resume();
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_EQ(drive->accessProblem(), "the drive does not respond; switch it off and on again");
    DriveWorker::scaleTimeouts(1);
    drive->mediaChanged();
    EXPECT_EQ(drive->accessProblem(), "");
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, OfADriveThatHungWhenItWasClaimedIsNotAskedAgainAtOnce) {
    DriveWorker::scaleTimeouts(0.05);
    burnThatHangsAt(operation::getConfiguration, audio({600}),
                    [](DRBurn& burning) { burning.abort(); });
    recorder->resume();
    EXPECT_EQ(drive->accessProblem(), "the drive does not respond; switch it off and on again");
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, LetsNoQuestionWaitForABurnThatHangs) {
    Clock::time_point begin;
    DriveWorker::scaleTimeouts(1);
    burnThatHangsAt(operation::getConfiguration, audio({600}), [&](DRBurn& burning) {
        begin = Clock::now();
        EXPECT_EQ(drive->accessProblem(), "");
        EXPECT_FALSE(drive->ejectMedia());
        EXPECT_FALSE(drive->mediaIsPresent());
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
        signalWorkers(SIGKILL);
        burning.abort();
    });
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, LetsNoStoppedBurnWaitForAQuestionThatHangs) {
    recorder->hang();
    const auto asking = std::async(std::launch::async, [this] { return drive->mediaIsPresent(); });
    EXPECT_TRUE(loops->runUntil([&] { return recorder->isHanging(); }));
    const auto begin = Clock::now();
    const auto burning = makeBurn();
    const auto log = observe(burning);
    burning->writeLayout(audio({300}));
    EXPECT_EQ(drive->accessProblem(), ""); // as soon as the burn has the drive
    burning->abort();
    EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled));
    EXPECT_EQ(workers().size(), 1U) << "none was started for the burn";
    signalWorkers(SIGKILL);
    asking.wait();
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, IsToldToStopWhenASourceFailsInTheMidstOfWriting) {
    const DRLayout layout = audio({300, 300});
    std::promise<void> written;
    std::atomic<unsigned> writes = 0;
    recorder->setCommandHook([&](std::uint8_t sent) {
        if (sent == operation::write && ++writes == 1)
            written.set_value();
    });
    Clock::time_point begin;
    sound->setReadHook([&, second = layout[1]->path](const std::string& path, std::uint64_t) {
        if (path != second)
            return;
        written.get_future().wait_for(std::chrono::seconds(10));
        begin = Clock::now();
        throw BurnFailure(DRError::SourceUnreadable, "the source is gone");
    });
    const auto log = burn(layout);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(log->code(), codeOf(DRError::SourceUnreadable));
    sound->setReadHook({});
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, ThatHangsInAQuestionEndsWhenTheDriveIsUnplugged) {
    recorder->hang();
    const auto asking = std::async(std::launch::async, [this] { return drive->mediaIsPresent(); });
    EXPECT_TRUE(loops->runUntil([&] { return recorder->isHanging(); }));
    const auto begin = Clock::now();
    DriveWorker::scaleTimeouts(0.01); // from the stop on
    drive->unplug();
    asking.wait();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    recorder->resume();
    EXPECT_TRUE(waitForNoWorkers());
}

TEST_F(TheProcessOfADrive, ThatHangsAfterTheLastSectorEndsWhenTheDriveIsUnplugged) {
    const DRLayout layout = audio({300});
    EXPECT_TRUE(burn(layout)->isDone());
    insert(Medium::blankCDR());
    std::atomic<std::size_t> left = countOf(operation::readCD);
    recorder->setCommandHook([&](std::uint8_t sent) {
        if (sent == operation::readCD && --left == 0)
            recorder->hang(); // from the next call on
    });
    const auto burning = makeBurn();
    const auto log = observe(burning);
    burning->writeLayout(layout);
    EXPECT_TRUE(loops->runUntil([&] { return recorder->isHanging(); }));
    const auto begin = Clock::now();
    DriveWorker::scaleTimeouts(0.01); // from the stop on
    drive->unplug();
    EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    EXPECT_TRUE(log->isDone()) << log->info();
    recorder->setCommandHook({});
    recorder->resume();
    EXPECT_TRUE(waitForNoWorkers());
}

/// A log of a host that throws.
class FullLog : public LogSink {
public:
    void log(const std::string&) override { throw std::runtime_error("the disk is full"); }
};

TEST(ADriveOfAHostWhoseLogThrows, IsAskedAndBurnsAllTheSame) {
    OpticalStage stage({.closesTray = false}); // which the log says
    const std::shared_ptr<const Platform> before = currentPlatform();
    Platform platform = *before;
    platform.log = std::make_shared<FullLog>();
    installPlatform(platform);
    EXPECT_TRUE(stage.burn(stage.audio({300}))->isDone());
    stage.recorder->setCommandHook([](std::uint8_t) { signalWorkers(SIGKILL); });
    stage.drive->mediaChanged();
    EXPECT_NO_THROW(stage.drive->mediaIsPresent());
    installPlatform(*before);
}

TEST_F(TheProcessOfADrive, OfADriveThatHangsEndsWhenItIsUnplugged) {
    DriveWorker::scaleTimeouts(0.1);
    const auto log =
        burnThatHangsAt(operation::write, audio({600}), [&](DRBurn&) { drive->unplug(); });
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceVanished)) << log->info();
    recorder->resume();
    EXPECT_TRUE(waitForNoWorkers());
}

TEST_F(TheProcessOfADrive, OfADriveThatHangsFailsTheBurnWithoutAnyoneAsking) {
    DriveWorker::scaleTimeouts(0.05);
    const auto log = burnThatHangsAt(operation::write, audio({600}), [](DRBurn&) {});
    EXPECT_EQ(log->code(), codeOf(DRError::DeviceHanging)) << log->info();
    expectAsGoodAsNew();
}

TEST_F(TheProcessOfADrive, ThatHangsLetsAnotherDriveBeAskedAsSoonAsAlone) {
    const auto other = bed.plug({});
    const auto otherDrive = makeDrive(*other);
    recorder->hang();
    const auto asking = std::async(std::launch::async, [this] { return drive->mediaIsPresent(); });
    EXPECT_TRUE(loops->runUntil([&] { return recorder->isHanging(); }));
    EXPECT_TRUE(otherDrive->mediaIsBlank());
    EXPECT_EQ(asking.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    recorder->resume();
    EXPECT_TRUE(asking.valid());
}

TEST_F(TheProcessOfADrive, ThatDoesNotAnswerIsSaidToHangAndIsNotAskedAgainAtOnce) {
    DriveWorker::scaleTimeouts(0.02);
    recorder->hang();
    EXPECT_FALSE(drive->mediaIsPresent());
    EXPECT_EQ(drive->accessProblem(), "the drive does not respond; switch it off and on again");
    recorder->resume();
    DriveWorker::scaleTimeouts(1);
    drive->mediaChanged();
    EXPECT_EQ(drive->accessProblem(), "");
    EXPECT_TRUE(drive->mediaIsBlank());
}

TEST_F(TheProcessOfADrive, RefusesStepsOfABurnOutOfTheirOrder) {
    insert(Medium::blankCDR());
    const DriveRecord record{recorder->node(), recorder->sysPath(), "", "", true};
    DiscPlan plan;
    plan.tracks = {{.preGap = 0, .length = 300}};
    DriveWorker worker(record, "Recorder");
    worker.ask(drive::claim, {{"drive", fieldsOf(record)}, {"plan", fieldsOf(plan)}}, nullptr);
    const auto expectRefused = [&](std::initializer_list<DriveRequest> requests) {
        for (const DriveRequest& request : requests)
            EXPECT_THROW(worker.ask(request, nullptr), BurnFailure) << request.name;
    };
    expectRefused({drive::write, drive::closeSession, drive::finish, drive::beginVerification,
                   drive::readBack, drive::claim, drive::reload});
    worker.ask(drive::openSession, nullptr);
    expectRefused({drive::openSession, drive::closeSession, drive::finish, drive::readBack});
    worker.ask(drive::release, nullptr);
    expectRefused({drive::openSession, drive::write});
    EXPECT_EQ(countOf(operation::write), 0U);
}

} // namespace
} // namespace quarner
