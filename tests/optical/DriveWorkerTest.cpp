// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <signal.h>

#include <atomic>
#include <functional>
#include <future>
#include <string>

#include "adapters/optical/DriveWorker.h"
#include "quarner/platform/DRKeys.h"
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
