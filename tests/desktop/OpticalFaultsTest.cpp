// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>

#include "quarner/platform/DRErrors.h"
#include "tests/desktop/OpticalDriveFixture.h"

namespace quarner::testing {
namespace {

using ::testing::StartsWith;

/// The reports of a failing burn on a real drive, and the success of the next one.
class OpticalFaults : public OpticalDriveTest, public ::testing::WithParamInterface<bool> {
protected:
    OpticalFaults() {
        if (GetParam())
            return;
        burner = Quarner::dataCDBurner();
        burner->setDelegate(&delegate);
    }

    void compileDisc() {
        compile({put("five.mp3", "one.mp3"), put("60.00.mp3", "two.mp3")});
        ASSERT_EQ(count(), 2U);
    }

    /// The burn has one end, an error with this code, and the drive is released.
    void expectFailure(const std::string& end, DRError error) {
        ASSERT_THAT(end, StartsWith("burnProgressDidError("));
        EXPECT_EQ(delegate.errors().back().code, signedCode(error)) << end;
        EXPECT_LT(delegate.errors().back().code, 0);
        expectOneEnd();
    }
    void expectOneEnd() {
        EXPECT_TRUE(runUntil([&] { return recorder->openCount() == 0; }));
        runPending();
        const std::vector<std::string> calls = delegate.calls();
        EXPECT_EQ(std::count_if(calls.begin(), calls.end(), isEnd), 1);
    }
    void expectNextBurnWorks() {
        recorder->setFaults({});
        EXPECT_FALSE(recorder->isTrayLocked());
        recorder->insert(Medium::blankCDR());
        runUntil([] { return QuarnerDevice(name).isDiscBlank(); });
        EXPECT_EQ(burn(), "burnProgressDidDone");
        EXPECT_TRUE(recorder->isReleased());
        EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Closed);
    }

    std::shared_ptr<EmulatedRecorder> recorder = plug();
};

TEST_P(OpticalFaults, AWriteError) {
    compileDisc();
    recorder->setFaults({.writeErrorAt = 200});
    expectFailure(burn(), DRError::WriteFailed);
    expectNextBurnWorks();
}

TEST_P(OpticalFaults, ADiscThatIsTakenOut) {
    compileDisc();
    recorder->setFaults({.removeMediumAt = 200});
    expectFailure(burn(), DRError::MediaNotPresent);
    expectNextBurnWorks();
}

TEST_P(OpticalFaults, ADriveThatIsUnplugged) {
    compileDisc();
    recorder->setFaults({.unplugAt = 200});
    expectFailure(burn(), DRError::DeviceVanished);
    EXPECT_TRUE(runUntil([] { return QuarnerDevice::devices().empty(); }));
    recorder->setFaults({});
    recorder->replug();
    waitForDrive();
    expectNextBurnWorks();
}

TEST_P(OpticalFaults, ADiscThatCannotBeReadBack) {
    compileDisc();
    recorder->setFaults({.readErrorAt = 200});
    expectFailure(burn(), DRError::ReadBackFailed);
    expectNextBurnWorks();
}

TEST_P(OpticalFaults, ACancellation) {
    compileDisc();
    recorder->setDelay(std::chrono::milliseconds(1));
    for (const char* const call : {"burnProgressIsPreparing", "burnProgressIsOpeningTrack",
                                   "burnProgressIsWriteingTrack", "burnProgressIsVerifying"}) {
        SCOPED_TRACE(call);
        recorder->insert(Medium::blankCDR());
        delegate.whenCalled = [&](const std::string& heard) {
            if (heard.starts_with(call))
                burner->stopBurn();
        };
        EXPECT_EQ(burn(), "burnProgressDidCanceled");
        expectOneEnd();
    }
    delegate.whenCalled = nullptr;
    recorder->setDelay({});
    expectNextBurnWorks();
}

INSTANTIATE_TEST_SUITE_P(, OpticalFaults, ::testing::Values(true, false),
                         [](const auto& tested) { return tested.param ? "Audio" : "Data"; });

} // namespace
} // namespace quarner::testing
