// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "adapters/posix/RegularFile.h"
#include "tests/image/ImageTest.h"
#include "tests/support/Watchdog.h"

namespace quarner {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class SourceFault : public AnyImageTest {
protected:
    /// Burns two sources and calls `disturb` with the second one's path while it is being read.
    Outcome burnAndDisturb(const std::function<void(const std::string&)>& disturb) {
        const Paths paths = makeSources({588 * 400, 588 * 2000});
        path = paths[1];
        stage->whileReading(path, [=, this] { disturb(path); });
        return burn(paths);
    }
    std::string path;
};

TEST_P(SourceFault, ASourceThatVanishesInMidBurnFailsIt) {
    const Paths old = makeSources({1000, 588 * 400});
    ASSERT_TRUE(burn(old).isDone);
    takeNewBlank();
    const Outcome outcome =
        burnAndDisturb([](const std::string& file) { std::filesystem::remove(file); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceMissing)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    EXPECT_TRUE(imageHolds(old)) << "the old image is kept";
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

TEST_P(SourceFault, ASourceThatShrinksInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb(
        [](const std::string& file) { std::filesystem::resize_file(file, 588 * 1000 * 4); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_P(SourceFault, ASourceThatIsWrittenAnewInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb([](const std::string& file) {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now());
    });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
}

INSTANTIATE_IMAGE_SUITE(SourceFault);

/// What is in the place of a file of a data disc by the time that it is opened.
class ReplacedSource : public ImageTest {
protected:
    ReplacedSource() : ImageTest(isoFormat()) {}

    /// Burns two files; `replace` does something with the second before any of it is read.
    Outcome burnAndReplace(const std::function<void(const std::string&)>& replace) {
        const Paths paths = makeSources({588 * 2000, 1000});
        path = paths[1];
        bool isReplaced = false;
        stage->beforeReading([=, this]() mutable {
            if (!std::exchange(isReplaced, true)) {
                std::filesystem::remove(path);
                replace(path);
            }
        });
        const Watchdog watchdog;
        return burn(paths);
    }
    void expectFailure(const Outcome& outcome, DRError error, const std::string& text) {
        EXPECT_EQ(outcome.code, codeOf(error)) << outcome.info;
        EXPECT_THAT(outcome.info, HasSubstr(path + ": " + text));
        EXPECT_THAT(filesInFolder(), IsEmpty());
    }

    std::string path;
};

TEST_F(ReplacedSource, AFifoFailsTheBurnInsteadOfHoldingItUp) {
    const Outcome outcome =
        burnAndReplace([](const std::string& file) { mkfifo(file.c_str(), 0600); });
    expectFailure(outcome, DRError::SourceMissing, "not a regular file");
}

TEST_F(ReplacedSource, ALinkToADeviceFailsTheBurnInsteadOfDeliveringWhatItGives) {
    const Outcome outcome = burnAndReplace(
        [](const std::string& file) { std::filesystem::create_symlink("/dev/zero", file); });
    expectFailure(outcome, DRError::SourceMissing, "not a regular file");
}

TEST_F(ReplacedSource, AFolderFailsTheBurn) {
    const Outcome outcome =
        burnAndReplace([](const std::string& file) { std::filesystem::create_directory(file); });
    expectFailure(outcome, DRError::SourceMissing, "not a regular file");
}

TEST_F(ReplacedSource, ALinkToTheLogOfTheKernelFailsTheBurnInsteadOfHoldingItUp) {
    const RegularFile log("/proc/kmsg");
    if (!log.isOpen())
        GTEST_SKIP() << "the log of the kernel cannot be opened here: " << log.problem();
    const Outcome outcome = burnAndReplace(
        [](const std::string& file) { std::filesystem::create_symlink("/proc/kmsg", file); });
    expectFailure(outcome, DRError::SourceChanged, "changed since it was added");
}

TEST_F(ReplacedSource, AnotherFileFailsTheBurnAtItsFirstByte) {
    const Outcome outcome =
        burnAndReplace([](const std::string& file) { std::ofstream(file) << "other"; });
    expectFailure(outcome, DRError::SourceChanged, "changed since it was added");
}

class SoundFault : public CueTest {};

TEST_F(SoundFault, ASourceThatDeliversLessThanItPromisedFailsTheBurn) {
    const DRLayout layout = makeLayout({588 * 400});
    const auto track = makeTrack(1000);
    track->sampleCount = 1001;
    const Outcome outcome = burn({layout[0], track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceUnreadable)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(track->path));
}

TEST_F(SoundFault, ASourceThatDeliversMoreThanItPromisedFailsTheBurn) {
    const auto track = makeTrack(1000);
    track->sampleCount = 999;
    const Outcome outcome = burn({track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceUnreadable)) << outcome.info;
}

} // namespace
} // namespace quarner
