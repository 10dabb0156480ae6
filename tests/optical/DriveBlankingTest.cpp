// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <functional>

#include "quarner/platform/DRKeys.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

/// Burns over a rewritable disc, and interruptions of that.
class DriveBlanking : public testing::Test, public OpticalStage {
protected:
    DriveBlanking() { insert(rewritable()); }

    std::unique_ptr<BurnLog> burnOver(const DRLayout& layout) {
        return burn(layout, {{DRBurnOverwriteDiscKey, true}});
    }
    /// The same, and calls `act` at the command for which `isIt` returns true.
    std::unique_ptr<BurnLog> burnOverAndAct(const std::function<bool(std::uint8_t)>& isIt,
                                            const std::function<void(DRBurn&)>& act) {
        const auto burning = makeBurn();
        auto log = observe(burning);
        recorder->setCommandHook([&](std::uint8_t sent) {
            if (isIt(sent))
                act(*burning);
        });
        burning->setProperties({{DRBurnOverwriteDiscKey, true}});
        burning->writeLayout(audio({620}));
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        recorder->setCommandHook({});
        return log;
    }
    /// Calls `act` when libburn first asks whether the disc is blank.
    std::unique_ptr<BurnLog> burnOverAndMeanwhile(const std::function<void(DRBurn&)>& act) {
        bool isBlanking = false;
        const auto isFirstQuestion = [&](std::uint8_t sent) {
            const bool isIt = isBlanking && sent == operation::testUnitReady;
            isBlanking = !isIt && (isBlanking || sent == operation::blank);
            return isIt;
        };
        return burnOverAndAct(isFirstQuestion, act);
    }
    void expectAsGoodAsNew() {
        expectReleased();
        insert(rewritable());
        const auto log = burnOver(audio({310}));
        EXPECT_TRUE(log->isDone()) << log->info();
    }
};

TEST_F(DriveBlanking, OfADiscThatIsTakenOutMeanwhileFailsTheBurn) {
    const auto log = burnOverAndMeanwhile([&](DRBurn&) { recorder->removeMedium(); });
    EXPECT_EQ(log->code(), codeOf(DRError::MediaNotPresent)) << log->info();
    EXPECT_EQ(countOf(operation::write), 0U);
    expectAsGoodAsNew();
}

TEST_F(DriveBlanking, ThatLeavesTheDiscAsItWasFailsTheBurn) {
    const auto log = burnOverAndMeanwhile([&](DRBurn&) { recorder->insert(rewritable()); });
    EXPECT_EQ(log->code(), codeOf(DRError::WriteFailed)) << log->info();
    EXPECT_EQ(countOf(operation::write), 0U);
    expectAsGoodAsNew();
}

TEST_F(DriveBlanking, IsTheEndOfABurnThatIsCancelledMeanwhile) {
    const auto log = burnOverAndMeanwhile([](DRBurn& burning) { burning.abort(); });
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_EQ(countOf(operation::write), 0U);
    EXPECT_TRUE(drive->mediaIsBlank());
    expectAsGoodAsNew();
}

TEST_F(DriveBlanking, OfADiscWhoseBurnWasCancelledMakesItNewAgain) {
    for (int round = 0; round < 2; ++round) {
        int writes = 0;
        const auto isTenthWrite = [&](std::uint8_t sent) {
            return sent == operation::write && ++writes == 10;
        };
        const auto cancelled =
            burnOverAndAct(isTenthWrite, [](DRBurn& burning) { burning.abort(); });
        EXPECT_EQ(cancelled->code(), codeOf(DRError::UserCanceled)) << cancelled->info();
        const auto log = burnOver(round == 0 ? audio({310}) : data(700'000));
        EXPECT_TRUE(log->isDone()) << log->info();
    }
}

} // namespace
} // namespace quarner
