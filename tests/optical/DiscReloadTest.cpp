// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/cdrom.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include <atomic>

#include "adapters/drive/DiscReload.h"
#include "adapters/drive/SharedNode.h"
#include "adapters/engine/BurnFailure.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tests/support/KeptLog.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using testing::HasSubstr;

constexpr std::uint8_t startStop = 0x1B;

/// The size that the kernel tells every program.
std::uint64_t kernelSizeOf(const EmulatedRecorder& recorder) {
    const SharedNode node(recorder.node());
    std::uint64_t bytes = 0;
    EXPECT_EQ(ioctl(node.descriptor(), BLKGETSIZE64, &bytes), 0);
    return bytes;
}

std::uint64_t writtenSizeOf(const EmulatedRecorder& recorder) {
    return std::uint64_t(recorder.writtenDisc()->end()) * dataBlockSize;
}

bool takeMediaChange(const EmulatedRecorder& recorder) {
    const SharedNode node(recorder.node());
    return ioctl(node.descriptor(), CDROM_MEDIA_CHANGED, CDSL_CURRENT) == 1;
}

class DiscReloading : public OpticalStage {
protected:
    explicit DiscReloading(const RecorderDescription& description = {})
        : OpticalStage(description), _before(currentPlatform()) {
        Platform platform = *_before;
        platform.log = _kept;
        installPlatform(platform);
        std::uint64_t seen = kernelSizeOf(*recorder); // as the system does when a disc is inserted
        EXPECT_EQ(seen, KernelDisc::unknownSize);
    }
    ~DiscReloading() { installPlatform(*_before); }

    std::size_t linesWith(const std::string& text) const {
        const std::vector<std::string> lines = _kept->lines();
        return std::size_t(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(text) != std::string::npos;
        }));
    }

    /// Sets faults when the tray is about to be closed.
    void setFaultsWhenClosing(const UnitFaults& faults) {
        recorder->setCommandHook([this, faults](std::uint8_t operation) {
            if (operation != startStop || !recorder->isTrayOpen())
                return;
            recorder->setFaults(faults);
            isClosing = true;
        });
    }

    std::atomic<bool> isClosing = false;

private:
    const std::shared_ptr<const Platform> _before;
    const std::shared_ptr<KeptLog> _kept = std::make_shared<KeptLog>();
};

constexpr unsigned forEver = 1'000'000;

/// After a burn of a data or an audio disc.
class ReloadAfterBurn : public testing::TestWithParam<bool>, public DiscReloading {
protected:
    DRLayout layout() { return GetParam() ? audio({320}) : data(1'100'000); }
    void expectSizeOfWrittenDisc() const {
        EXPECT_EQ(kernelSizeOf(*recorder),
                  GetParam() ? KernelDisc::unknownSize : writtenSizeOf(*recorder));
    }
};

TEST_P(ReloadAfterBurn, ShowsTheWrittenDiscToTheKernel) {
    ASSERT_TRUE(burn(layout())->isDone());
    EXPECT_EQ(recorder->ejections(), 1U);
    EXPECT_FALSE(recorder->isTrayOpen());
    EXPECT_TRUE(takeMediaChange(*recorder));
    expectSizeOfWrittenDisc();
    EXPECT_EQ(linesWith("reloaded"), 0U);
    expectReleased();
}

TEST_P(ReloadAfterBurn, IsOverWhenTheEndOfTheBurnIsReported) {
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    unsigned ejections = 0;
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateDone)
            ejections = recorder->ejections();
    };
    burning->writeLayout(layout());
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    loops->setInStep(false);
    EXPECT_EQ(ejections, 1U);
    log->onRecord = nullptr;
}

TEST_P(ReloadAfterBurn, WaitsUntilTheDiscIsReady) {
    UnitFaults faults;
    faults.notReady = 2;
    setFaultsWhenClosing(faults);
    ASSERT_TRUE(burn(layout())->isDone());
    recorder->setCommandHook(nullptr);
    EXPECT_FALSE(drive->mediaIsTransitioning());
    EXPECT_TRUE(drive->mediaIsPresent());
}

TEST_P(ReloadAfterBurn, DoesNotFollowACancelledBurn) {
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    log->onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateVerifying)
            burning->abort();
    };
    burning->writeLayout(layout());
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    loops->setInStep(false);
    log->onRecord = nullptr;
    EXPECT_EQ(log->code(), codeOf(DRError::UserCanceled)) << log->info();
    EXPECT_EQ(recorder->ejections(), 0U);
}

TEST_P(ReloadAfterBurn, DoesNotFollowAFailedBurn) {
    UnitFaults faults;
    faults.readErrorAt = 200;
    recorder->setFaults(faults);
    EXPECT_FALSE(burn(layout())->isDone());
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Closed) << "it was written";
    EXPECT_EQ(recorder->ejections(), 0U);
}

TEST_P(ReloadAfterBurn, EndsAtOnceWhenTheDriveIsUnplugged) {
    UnitFaults faults;
    faults.notReady = forEver;
    setFaultsWhenClosing(faults);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    burning->writeLayout(layout());
    ASSERT_TRUE(loops->runUntil([&] { return isClosing.load(); }));
    EXPECT_FALSE(log->isOver());
    const auto start = std::chrono::steady_clock::now();
    recorder->unplug();
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_EQ(linesWith("unplugged"), 1U);
    EXPECT_EQ(recorder->openCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(, ReloadAfterBurn, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "OfAudio" : "OfData"; });

/// A drive that reports another disc when it has written one.
class ReportingDrive : public testing::Test, public DiscReloading {
protected:
    ReportingDrive() : DiscReloading({.reportsWrittenDisc = true}) {}
};

TEST_F(ReportingDrive, IsNotReloaded) {
    ASSERT_TRUE(burn(audio({320}))->isDone());
    insert(Medium::blankCDR());
    ASSERT_TRUE(burn(data(1'100'000))->isDone());
    EXPECT_EQ(recorder->ejections(), 0U);
    EXPECT_EQ(kernelSizeOf(*recorder), writtenSizeOf(*recorder));
    EXPECT_EQ(linesWith("reload"), 0U);
}

/// A drive with a tray that must be pushed in.
class ManualTray : public testing::Test, public DiscReloading {
protected:
    ManualTray() : DiscReloading({.closesTray = false}) {}
};

TEST_F(ManualTray, StaysClosedWhichIsLoggedOnce) {
    ASSERT_TRUE(burn(data(1'100'000))->isDone());
    insert(Medium::blankCDR());
    ASSERT_TRUE(burn(audio({320}))->isDone());
    EXPECT_EQ(recorder->ejections(), 0U);
    EXPECT_FALSE(recorder->isTrayOpen());
    EXPECT_EQ(linesWith("cannot close its tray"), 1U);
    expectReleased();
}

TEST_F(ManualTray, LeavesTheKernelTheOldSizeUntilTheDiscIsInsertedAgain) {
    ASSERT_TRUE(burn(data(1'100'000))->isDone());
    EXPECT_EQ(kernelSizeOf(*recorder), KernelDisc::unknownSize);
    insert(recorder->writtenDisc().value());
    EXPECT_EQ(kernelSizeOf(*recorder), writtenSizeOf(*recorder));
}

/// A reload of a data disc without a burn.
class DiscReloadTest : public testing::Test, public DiscReloading {
protected:
    DiscReload makeReload(std::uint32_t blocks) const {
        return {drive->record(), {.sectorSize = dataBlockSize, .tracks = {{0, blocks}}}};
    }
    std::string failureOf(const DiscReload& reload) const {
        try {
            reload.perform(std::chrono::milliseconds(50));
        } catch (const BurnFailure& failure) {
            return failure.info();
        }
        return "";
    }
    void setNotReady() {
        UnitFaults faults;
        faults.notReady = forEver;
        setFaultsWhenClosing(faults);
    }
};

TEST_F(DiscReloadTest, IsNeededAlsoIfTheOldContentHadTheSameSize) {
    insert(Medium::dataCD(1000));
    ASSERT_EQ(kernelSizeOf(*recorder), 1000U * dataBlockSize);
    const DiscReload reload = makeReload(1000);
    EXPECT_EQ(reload.perform(), DiscReload::Result::Reloaded);
    EXPECT_EQ(recorder->ejections(), 1U);
}

TEST_F(DiscReloadTest, IsNeededIfTheKernelHasNoticedAnotherDiscOfAnotherSize) {
    const DiscReload reload = makeReload(1000);
    insert(Medium::dataCD(500)); // as a drive that reports the blanked disc, not the written one
    EXPECT_THAT(failureOf(reload), HasSubstr("has the old size"));
    EXPECT_EQ(recorder->ejections(), 1U);
}

TEST_F(DiscReloadTest, IsNotNeededWithAFewBlocksMoreThanWereWritten) {
    const DiscReload reload = makeReload(1000);
    insert(Medium::dataCD(1152));
    EXPECT_EQ(reload.perform(), DiscReload::Result::NotNeeded);
    const DiscReload ofShortestTrack = makeReload(100);
    insert(Medium::dataCD(300 + 152));
    EXPECT_EQ(ofShortestTrack.perform(), DiscReload::Result::NotNeeded);
}

TEST_F(DiscReloadTest, LeavesATrayOpenThatTheUserHasOpened) {
    const DiscReload reload = makeReload(1000);
    recorder->pressEject();
    EXPECT_EQ(reload.perform(), DiscReload::Result::NotNeeded);
    EXPECT_TRUE(recorder->isTrayOpen());
}

TEST_F(DiscReloadTest, ThatFailsIsLoggedAndDoesNotFailTheBurn) {
    UnitFaults faults;
    faults.isTrayStuck = true;
    recorder->setFaults(faults);
    const auto log = burn(data(1'100'000));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_EQ(linesWith("the written disc was not reloaded: the system has the old size"), 1U);
    expectReleased();
}

TEST_F(DiscReloadTest, FailsIfTheTrayStaysShut) {
    const DiscReload reload = makeReload(1000);
    UnitFaults faults;
    faults.isTrayStuck = true;
    recorder->setFaults(faults);
    EXPECT_THAT(failureOf(reload), HasSubstr("has the old size"));
    expectReleased();
}

TEST_F(DiscReloadTest, FailsIfTheTrayStaysOpen) {
    const DiscReload reload = makeReload(1000);
    UnitFaults faults;
    faults.isTrayStuck = true;
    setFaultsWhenClosing(faults);
    EXPECT_EQ(failureOf(reload), "the tray did not close again");
    recorder->setCommandHook(nullptr);
    expectReleased();
}

TEST_F(DiscReloadTest, FailsIfTheDiscDoesNotGetReadyInTime) {
    const DiscReload reload = makeReload(1000);
    setNotReady();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf(reload), "the reloaded disc does not get ready");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    recorder->setCommandHook(nullptr);
    EXPECT_FALSE(recorder->isTrayOpen());
    expectReleased();
}

TEST_F(DiscReloadTest, WaitsForAProgramThatHasTheDriveForAMoment) {
    const DiscReload reload = makeReload(1000);
    recorder->setBusy(2);
    failureOf(reload);
    EXPECT_EQ(recorder->ejections(), 1U);
}

TEST_F(DiscReloadTest, FailsOnADriveThatIsUnplugged) {
    const DiscReload reload = makeReload(1000);
    recorder->unplug();
    EXPECT_THROW(reload.perform(), BurnFailure);
}

TEST_F(DiscReloadTest, FailsIfTheDriveIsUnpluggedByItsMovement) {
    const DiscReload reload = makeReload(1000);
    UnitFaults faults;
    faults.unplugAfter = 0;
    setFaultsWhenClosing(faults);
    EXPECT_THROW(reload.perform(), BurnFailure);
    recorder->setCommandHook(nullptr);
    bed.finishEvents();
    EXPECT_EQ(recorder->openCount(), 0);
}

} // namespace
} // namespace quarner
