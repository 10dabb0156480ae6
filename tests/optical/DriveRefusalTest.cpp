// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "quarner/platform/DRKeys.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

Medium appendable(Medium::Kind kind) {
    Medium medium = Medium::audioCD({300});
    medium.kind = kind;
    medium.state = Medium::State::Appendable;
    return medium;
}
Medium pressed() {
    Medium medium = Medium::audioCD({300});
    medium.kind = Medium::Kind::CDROM;
    return medium;
}

class DriveRefusal : public testing::Test, public OpticalStage {
protected:
    /// Returns the code of a burn that fails before the drive receives a command.
    std::uint32_t codeFor(const DRLayout& layout, Dictionary properties = {}) {
        properties.emplace(DRBurnOverwriteDiscKey, true);
        const std::size_t before = wasTold();
        const auto log = burn(layout, std::move(properties));
        EXPECT_EQ(wasTold(), before);
        EXPECT_EQ(log->count(DRStatusStateSessionOpen), 0U);
        expectReleased();
        return log->code();
    }
    std::size_t wasTold() const {
        return countOf(operation::write) + countOf(operation::sendCueSheet) +
               countOf(operation::blank);
    }
};

TEST_F(DriveRefusal, WithoutADisc) {
    recorder->removeMedium();
    EXPECT_EQ(codeFor(audio({300})), codeOf(DRError::MediaNotPresent));
}

TEST_F(DriveRefusal, OfADiscWithContentThatCannotBeErased) {
    insert(Medium::audioCD({300}));
    EXPECT_EQ(codeFor(audio({300})), codeOf(DRError::MediaNotWritable));
    insert(appendable(Medium::Kind::CDR));
    EXPECT_EQ(codeFor(data(1000)), codeOf(DRError::MediaNotWritable));
    insert(pressed());
    EXPECT_EQ(codeFor(audio({300})), codeOf(DRError::MediaNotWritable));
}

TEST_F(DriveRefusal, OfARewritableDiscWithContentThatIsNotToBeOverwritten) {
    insert(rewritable());
    EXPECT_EQ(codeFor(audio({300}), {{DRBurnOverwriteDiscKey, false}}),
              codeOf(DRError::MediaNotWritable));
    EXPECT_EQ(recorder->writtenDisc()->tracks.size(), 1U);
}

TEST_F(DriveRefusal, OfADVD) {
    insert(Medium::blankDVD());
    EXPECT_EQ(codeFor(audio({300})), codeOf(DRError::WrongMedia));
    EXPECT_EQ(codeFor(data(1000)), codeOf(DRError::WrongMedia));
}

TEST_F(DriveRefusal, OfOneSectorTooMany) {
    for (const Medium& disc : {Medium::blankCDR(1000), Medium::blankCDRW(1000)}) {
        insert(disc);
        EXPECT_EQ(codeFor(audio({1001})), codeOf(DRError::MediaTooSmall));
        EXPECT_EQ(codeFor(audio({500, 351})), codeOf(DRError::MediaTooSmall));
    }
    Medium full = rewritable();
    full.capacity = 1000;
    insert(full);
    EXPECT_EQ(codeFor(audio({1001})), codeOf(DRError::MediaTooSmall));
}

TEST_F(DriveRefusal, NotOfALayoutThatFillsTheDisc) {
    insert(Medium::blankCDR(1000));
    const auto log = burn(audio({500, 350}));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_EQ(recorder->writtenDisc()->end(), 1000);
}

TEST_F(DriveRefusal, OfASecondBurnAndAnEjectionWhileOneIsUnderWay) {
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    const auto second = makeBurn();
    const auto secondLog = observe(second);
    bool isEjected = true;
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) != DRStatusStateTrackOpen)
            return;
        isEjected = drive->ejectMedia();
        second->writeLayout(audio({300}));
        loops->setInStep(false);
    };
    burning->writeLayout(audio({2000}));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver() && secondLog->isOver(); }));
    EXPECT_FALSE(isEjected);
    EXPECT_EQ(secondLog->code(), codeOf(DRError::DeviceBusy)) << secondLog->info();
    EXPECT_TRUE(log->isDone()) << log->info();
}

TEST_F(DriveRefusal, OfADriveWhoseNodeIsGone) {
    recorder->unplug();
    EXPECT_EQ(codeFor(audio({300})), codeOf(DRError::DeviceVanished));
}

TEST_F(DriveRefusal, OfASourceThatChangedComesBeforeTheDiscIsBlanked) {
    insert(rewritable());
    const DRLayout layout = audio({300});
    std::filesystem::remove(layout[0]->path);
    EXPECT_EQ(codeFor(layout), codeOf(DRError::SourceMissing));
}

} // namespace
} // namespace quarner
