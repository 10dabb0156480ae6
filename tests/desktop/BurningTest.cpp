// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <mutex>
#include <string_view>
#include <thread>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/desktop/DesktopFixture.h"

namespace quarner::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DesktopBurning : public DesktopTest {
protected:
    std::string addDrive(const std::string& image = "mix.cue") const {
        return addImageDrive({.path = folder.file(image), .minutes = 80});
    }

    /// The calls of a burn without progress reports and repetitions.
    std::vector<std::string> states() const {
        std::vector<std::string> states = delegate.calls();
        std::erase_if(states, [](const std::string& call) {
            return call.starts_with("burnProgressDidChanaged");
        });
        states.erase(std::unique(states.begin(), states.end()), states.end());
        return states;
    }

    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(DesktopBurning, AHostAddsFilesReadsTheListAndBurnsItToAnImage) {
    const QuarnerDevice drive(addDrive());
    compile({put("six.m4a", "two.m4a"), put("five.mp3", "one.mp3")});
    EXPECT_EQ(burner->usedCapacity(), 15U);
    EXPECT_FALSE(burner->isContentOverflowForDevice(drive));
    EXPECT_TRUE(drive.isDiscBlank());
    delegate.forget();

    burner->burnWithDevice(drive, "Mix");
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidStarted"));
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    EXPECT_THAT(states(),
                ElementsAre("burnProgressDidStarted", "burnProgressIsPreparing",
                            "burnProgressIsOpeningTrack(1, 2)", "burnProgressIsWriteingTrack(1, 2)",
                            "burnProgressDidCloseTrack(1, 2)", "burnProgressIsOpeningTrack(2, 2)",
                            "burnProgressIsWriteingTrack(2, 2)", "burnProgressDidCloseTrack(2, 2)",
                            "burnProgressDidCloseSession", "burnProgressIsFinishing",
                            "burnProgressIsVerifying", "burnProgressDidDone"));
    for (const RecordingDelegate::Call& call : delegate.callsWithThreads())
        EXPECT_EQ(call.thread, std::this_thread::get_id()) << call.text;

    EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue", "one.mp3", "two.m4a"));
    EXPECT_EQ(std::filesystem::file_size(folder.file("mix.bin")),
              (375 + 150 + 450) * audioSectorSize);
    EXPECT_FALSE(drive.isDiscBlank());
    EXPECT_EQ(drive.usedTimeOfDisc(), 13U);
}

TEST_F(DesktopBurning, ProgressIsToldToTheEndOfBothPhases) {
    const QuarnerDevice drive(addDrive());
    compile({put("five.mp3", "one.mp3")});
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    std::size_t whole = 0;
    for (const std::string& call : delegate.calls())
        whole += call.starts_with("burnProgressDidChanaged(1,") ? 1U : 0U;
    EXPECT_GE(whole, 2U);
}

TEST_F(DesktopBurning, ANewBlankIsBurntAfterTheFirstDiscWasEjected) {
    const std::string name = addDrive();
    QuarnerDevice drive(name);
    compile({put("five.mp3", "one.mp3")});
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    const auto firstSize = std::filesystem::file_size(folder.file("mix.bin"));

    EXPECT_FALSE(insertBlankDisc(name));
    drive.eject();
    EXPECT_FALSE(drive.isDiscInDevice());
    EXPECT_TRUE(insertBlankDisc(name));
    EXPECT_TRUE(drive.isDiscBlank());
    EXPECT_EQ(std::filesystem::file_size(folder.file("mix.bin")), firstSize);

    compile({put("six.m4a", "two.m4a")});
    delegate.forget();
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    EXPECT_EQ(std::filesystem::file_size(folder.file("mix.bin")),
              (375 + 150 + 450) * audioSectorSize);
}

TEST_F(DesktopBurning, StoppingEndsInACancellationAndLeavesNoImage) {
    const QuarnerDevice drive(addDrive());
    delegate.whenCalled = [&](const std::string& call) {
        if (call == "burnProgressIsWriteingTrack(1, 2)")
            burner->stopBurn();
    };
    compile({put("60.00.mp3", "one.mp3"), put("60.00.m4a", "two.m4a")});
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidCanceled"));
    EXPECT_EQ(delegate.count("burnProgressDidDone"), 0U);
    EXPECT_THAT(delegate.errors(), IsEmpty());
    EXPECT_THAT(filesInFolder(), ElementsAre("one.mp3", "two.m4a"));
    EXPECT_TRUE(drive.isDiscBlank());
}

TEST_F(DesktopBurning, UninstallingDuringABurnLeavesNoHalfImage) {
    const QuarnerDevice drive(addDrive());
    compile({put("60.00.mp3", "one.mp3")});
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressIsWriteingTrack(1, 1)"));
    uninstallDesktopPlatform();
    // No files or all files: the burn may have been faster.
    EXPECT_THAT(filesInFolder(),
                AnyOf(ElementsAre("one.mp3"), ElementsAre("mix.bin", "mix.cue", "one.mp3")));
}

TEST_F(DesktopBurning, NothingIsReportedOfABurnAfterUninstalling) {
    const QuarnerDevice drive(addDrive());
    compile({put("60.00.mp3", "one.mp3")});
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidStarted"));
    uninstallDesktopPlatform();
    delegate.forget();
    while (g_main_context_pending(nullptr) == TRUE)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(DesktopBurning, ABurnOnADriveOfAnUninstalledPlatformIsRefused) {
    const QuarnerDevice drive(addDrive());
    compile({put("five.mp3", "one.mp3")});
    uninstallDesktopPlatform();
    delegate.forget();
    burner->burnWithDevice(drive, std::nullopt);
    EXPECT_THAT(delegate.calls(),
                ElementsAre("burnProgressDidStarted", "burnProgressDidError(Quarn, 0)"));
    EXPECT_FALSE(drive.isDiscBlank());
}

std::mutex logMutex;
std::vector<std::string> logLines;

GLogWriterOutput keepLine(GLogLevelFlags, const GLogField* fields, gsize count, gpointer) {
    const std::lock_guard lock(logMutex);
    for (gsize i = 0; i < count; ++i)
        if (std::string_view(fields[i].key) == "MESSAGE")
            logLines.emplace_back(static_cast<const char*>(fields[i].value));
    return G_LOG_WRITER_HANDLED;
}

TEST_F(DesktopBurning, DiagnosticsGoToTheStructuredLog) {
    static const bool isSet = (g_log_set_writer_func(keepLine, nullptr, nullptr), true);
    ASSERT_TRUE(isSet);
    compile({put("five.mp3", "one.mp3")});
    burner->burnWithDevice(QuarnerDevice(addDrive()), std::nullopt);
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    const std::lock_guard lock(logMutex);
    EXPECT_THAT(logLines, Contains(std::string("currentStatus:") + DRStatusStateSessionOpen));
}

TEST_F(DesktopBurning, ADriveWithoutADiscIsRefusedAtOnce) {
    QuarnerDevice drive(addDrive());
    compile({put("five.mp3", "one.mp3")});
    drive.eject();
    delegate.forget();
    EXPECT_FALSE(burner->isContentOverflowForDevice(drive));
    burner->burnWithDevice(drive, std::nullopt);
    EXPECT_THAT(delegate.calls(),
                ElementsAre("burnProgressDidStarted", "burnProgressDidError(Quarn, 0)"));
    runPending();
    EXPECT_EQ(delegate.calls().size(), 2U);
    EXPECT_THAT(filesInFolder(), ElementsAre("one.mp3"));
}

TEST_F(DesktopBurning, AnEmptyCompilationIsNotBurnt) {
    const QuarnerDevice drive(addDrive());
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !delegate.errors().empty(); }));
    EXPECT_THAT(filesInFolder(), IsEmpty());
    EXPECT_TRUE(drive.isDiscBlank());
}

TEST_F(DesktopBurning, AFileThatIsGoneSinceItWasAddedFailsTheBurn) {
    const QuarnerDevice drive(addDrive());
    const std::string path = put("five.mp3", "one.mp3");
    compile({path});
    std::filesystem::remove(path);
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !delegate.errors().empty(); }));
    EXPECT_EQ(delegate.errors().front().code, signedCode(DRError::SourceMissing));
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_F(DesktopBurning, ARelativePathCountsFromTheWorkingDirectoryOfTheBurn) {
    const QuarnerDevice drive(addDrive());
    compileInWorkingDirectory("five.mp3", "one.mp3");
    std::filesystem::current_path("/");
    burner->burnWithDevice(drive, std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !delegate.errors().empty(); }));
    EXPECT_EQ(delegate.errors().front().code, signedCode(DRError::SourceMissing));
    std::filesystem::current_path(folder.path());
    burner->burnWithDevice(drive, std::nullopt);
    EXPECT_TRUE(runUntilCalled("burnProgressDidDone"));
}

TEST_F(DesktopBurning, AThreadHearsOfEachBurnThroughTheLoopThatItThenHas) {
    const std::string name = addDrive();
    compile({put("five.mp3", "one.mp3")});
    delegate.forget();
    const auto burnWithALoopOfItsOwn = [&](std::size_t number) {
        GMainContext* const context = g_main_context_new();
        g_main_context_push_thread_default(context);
        {
            QuarnerDevice drive(name);
            burner->burnWithDevice(drive, std::nullopt);
            const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
            while (delegate.count("burnProgressDidDone") < number &&
                   std::chrono::steady_clock::now() < end)
                if (!g_main_context_iteration(context, FALSE))
                    g_usleep(500);
            drive.eject();
        }
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    };
    std::thread::id burning;
    std::thread([&] {
        burning = std::this_thread::get_id();
        burnWithALoopOfItsOwn(1);
        EXPECT_TRUE(insertBlankDisc(name));
        burnWithALoopOfItsOwn(2);
    }).join();
    EXPECT_EQ(delegate.count("burnProgressDidDone"), 2U);
    for (const RecordingDelegate::Call& call : delegate.callsWithThreads())
        EXPECT_EQ(call.thread, burning) << call.text;
}

TEST_F(DesktopBurning, StoppingWithoutABurnDoesNothing) {
    burner->stopBurn();
    runPending();
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

} // namespace
} // namespace quarner::testing
