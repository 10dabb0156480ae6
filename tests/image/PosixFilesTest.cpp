// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/FileSystem.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Watchdog.h"

namespace quarner {
namespace {

std::atomic<bool> areFilesNumberedAnew = false;
std::atomic<int> statusError = 0;
std::atomic<unsigned> statusCalls = 0;

} // namespace
} // namespace quarner

/// Stands before libc's: the status of files as some network file systems give it.
extern "C" [[gnu::visibility("default")]] int stat(const char* path, struct stat* status) noexcept {
    const int outcome = fstatat(AT_FDCWD, path, status, 0);
    const unsigned call = ++quarner::statusCalls;
    if (outcome == 0 && quarner::areFilesNumberedAnew)
        status->st_ino += call;
    if (outcome != 0 || quarner::statusError == 0)
        return outcome;
    errno = quarner::statusError;
    return -1;
}

namespace quarner {
namespace {

using testing::HasSubstr;

class PosixFiles : public testing::Test {
protected:
    ~PosixFiles() override {
        areFilesNumberedAnew = false;
        statusError = 0;
    }
    /// How taking the lock fails; an empty text if it does not.
    std::string problemOfLock() {
        try {
            files->lock(path, stop);
            return {};
        } catch (const BurnFailure& failure) {
            return failure.info();
        }
    }

    const std::shared_ptr<FileSystem> files = posixFileSystem();
    const TemporaryFolder folder;
    const std::string path = folder.file("lock");
    StopSignal stop;

private:
    const Watchdog _watchdog;
};

TEST_F(PosixFiles, ALockLeavesNoFileBehind) {
    EXPECT_EQ(problemOfLock(), "");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PosixFiles, ALockWhereFilesAreNumberedAnewEachTimeFailsInsteadOfGoingOnForEver) {
    areFilesNumberedAnew = true;
    EXPECT_EQ(problemOfLock(),
              "locking " + path + ": the file system does not keep the file there");
}

TEST_F(PosixFiles, ALockOfWhichTheSystemDoesNotTellFailsWithItsReason) {
    statusError = EIO;
    EXPECT_EQ(problemOfLock(), "locking " + path + ": Input/output error");
}

TEST_F(PosixFiles, ALockHeedsTheStop) {
    areFilesNumberedAnew = true;
    stop.request(DRError::UserCanceled);
    const unsigned before = statusCalls;
    EXPECT_EQ(problemOfLock(), textForBurnErrorCode(signedCode(DRError::UserCanceled)));
    EXPECT_EQ(statusCalls, before);
}

TEST_F(PosixFiles, ALockThatItsHolderLetsGoOfIsTaken) {
    std::atomic<bool> isOver = false;
    const auto takeAndLetGo = [&] {
        const auto others = posixFileSystem();
        while (!isOver)
            try {
                others->lock(path, stop);
            } catch (const BurnFailure&) { // held by the other one
            }
    };
    std::thread other(takeAndLetGo);
    for (int taken = 0; taken < 100;) {
        const std::string problem = problemOfLock();
        taken += problem.empty() ? 1 : 0;
        if (!problem.empty()) {
            EXPECT_THAT(problem, HasSubstr("is held by another burn"));
        }
    }
    isOver = true;
    other.join();
}

TEST_F(PosixFiles, ANewFileReplacesNothing) {
    const std::string there = folder.write("there", "old");
    EXPECT_THROW(files->create(there, folder.file("none")), BurnFailure);
    std::filesystem::create_symlink(folder.file("elsewhere"), folder.file("link"));
    EXPECT_THROW(files->create(folder.file("link"), folder.file("none")), BurnFailure);
    EXPECT_EQ(std::filesystem::file_size(there), 3U);
    EXPECT_FALSE(std::filesystem::exists(folder.file("elsewhere")));
}

} // namespace
} // namespace quarner
