// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "adapters/engine/BurnFailure.h"
#include "adapters/worker/WorkerProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

using Clock = std::chrono::steady_clock;

/// The programs are scripts in a folder of the test's own.
class AProcessOfTheLibrary : public ::testing::Test {
protected:
    AProcessOfTheLibrary() {
        if (const char* const named = getenv("QUARNER_WORKERS"))
            _named = named;
        setenv("QUARNER_WORKERS", folder.path().c_str(), 1);
        write("sleeps", "exec sleep 60");
        write("ends", "exit 0");
    }
    ~AProcessOfTheLibrary() override {
        if (_named)
            setenv("QUARNER_WORKERS", _named->c_str(), 1);
        else
            unsetenv("QUARNER_WORKERS");
    }

    void write(const std::string& name, const std::string& command) {
        const std::string path = folder.write(name, "#!/bin/sh\n" + command + '\n');
        ASSERT_EQ(chmod(path.c_str(), 0700), 0);
    }
    template <typename Condition>
    static bool waitFor(const Condition& condition) {
        const auto end = Clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (Clock::now() >= end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    static bool exists(int process) { return ::kill(process, 0) == 0; }
    static std::string firstLine(int process, const std::string& file) {
        std::ifstream stream("/proc/" + std::to_string(process) + '/' + file);
        std::string line;
        std::getline(stream, line);
        return line;
    }
    static bool isSleeping(int process) {
        return waitFor([&] { return firstLine(process, "comm") == "sleep"; });
    }
    static std::set<std::string> descriptors(int process) {
        std::set<std::string> found;
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(
                 "/proc/" + std::to_string(process) + "/fd", ignored))
            found.insert(entry.path().filename().string());
        return found;
    }
    /// A set of signals of /proc/PID/status, without those that the C library has for itself.
    static unsigned long signals(int process, const std::string& key) {
        constexpr unsigned long documented = (1UL << 31) - 1;
        return std::stoul(status(process, key), nullptr, 16) & documented;
    }
    static std::string status(int process, const std::string& key) {
        std::ifstream stream("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(stream, line);)
            if (line.starts_with(key + ":\t"))
                return line.substr(key.size() + 2);
        return {};
    }

    TemporaryFolder folder;

private:
    std::optional<std::string> _named;
};

TEST_F(AProcessOfTheLibrary, HasNoDescriptorOfTheHost) {
    const FileDescriptor inherited(open("/dev/null", O_RDONLY)); // NOLINT: without O_CLOEXEC
    const FileDescriptor high(fcntl(inherited.number(), F_DUPFD, 200));
    const WorkerProcess process("sleeps");
    ASSERT_TRUE(isSleeping(process.pid()));
    const std::set<std::string> own = {"0", "1", "2", "3", "4"};
    EXPECT_TRUE(waitFor([&] { return descriptors(process.pid()) == own; })) // after its libraries
        << ::testing::PrintToString(descriptors(process.pid()));
    process.kill();
}

TEST_F(AProcessOfTheLibrary, HasASessionOfItsOwnAndTheDefaultSignals) {
    sigset_t blocked = {};
    sigset_t before = {};
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto former = signal(SIGHUP, SIG_IGN);
    const WorkerProcess process("sleeps");
    signal(SIGHUP, former);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ASSERT_TRUE(isSleeping(process.pid()));
    EXPECT_EQ(getsid(process.pid()), process.pid());
    EXPECT_EQ(signals(process.pid(), "SigBlk"), 0U);
    EXPECT_EQ(signals(process.pid(), "SigIgn"), 0U);
    process.kill();
}

TEST_F(AProcessOfTheLibrary, ThatCannotBeStartedIsNamedInTheFailure) {
    try {
        const WorkerProcess process("none");
        FAIL();
    } catch (const BurnFailure& failure) {
        EXPECT_EQ(failure.error(), DRError::Internal);
        EXPECT_THAT(failure.info(), ::testing::HasSubstr(folder.file("none")));
    }
}

TEST_F(AProcessOfTheLibrary, ThatEndsIsCollected) {
    int number = 0;
    {
        const WorkerProcess process("ends");
        number = process.pid();
        EXPECT_TRUE(process.waitForEnd(std::chrono::seconds(10)));
    }
    EXPECT_FALSE(exists(number));
}

TEST_F(AProcessOfTheLibrary, ThatIgnoresTheEndOfTheChannelIsKilled) {
    int number = 0;
    {
        const WorkerProcess process("sleeps");
        number = process.pid();
        ASSERT_TRUE(isSleeping(number));
    }
    EXPECT_FALSE(exists(number));
}

TEST_F(AProcessOfTheLibrary, IsWaitedForThoughSignalsInterrupt) {
    struct sigaction action = {};
    struct sigaction former = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, &former);
    const WorkerProcess process("sleeps");
    const itimerval often = {{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    EXPECT_FALSE(process.waitForEnd(std::chrono::milliseconds(30)));
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &former, nullptr);
    process.kill();
    EXPECT_TRUE(process.waitForEnd(std::chrono::seconds(10)));
}

TEST_F(AProcessOfTheLibrary, ThatWasDetachedIsCollectedWhenItHasEnded) {
    int number = 0;
    {
        WorkerProcess process("sleeps");
        process.detach();
        number = process.pid();
    }
    EXPECT_TRUE(exists(number));
    ::kill(number, SIGKILL);
    ASSERT_TRUE(waitFor([&] { return status(number, "State").starts_with('Z'); }));
    const WorkerProcess next("ends");
    EXPECT_FALSE(exists(number));
}

TEST_F(AProcessOfTheLibrary, MayBeCollectedByTheHost) {
    const WorkerProcess process("ends");
    ASSERT_TRUE(process.waitForEnd(std::chrono::seconds(10)));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), process.pid());
}

TEST_F(AProcessOfTheLibrary, TakesNoNumberOfAStandardStreamThatTheHostHasClosed) {
    const pid_t host = fork();
    if (host == 0) {
        close(STDERR_FILENO);
        const WorkerProcess process("sleeps");
        process.kill();
        _exit(fcntl(STDERR_FILENO, F_GETFD) < 0 ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(host, &status, 0), host);
    EXPECT_EQ(status, 0);
}

TEST_F(AProcessOfTheLibrary, OfAHostThatIgnoresItsChildrenStartsAndEnds) {
    const auto former = signal(SIGCHLD, SIG_IGN);
    for (int i = 0; i < 20; ++i) {
        const WorkerProcess process("ends");
        EXPECT_TRUE(process.waitForEnd(std::chrono::seconds(10)));
    }
    int number = 0;
    {
        const WorkerProcess process("sleeps");
        number = process.pid();
        process.kill();
    }
    EXPECT_TRUE(waitFor([&] { return !exists(number); }));
    signal(SIGCHLD, former);
}

} // namespace
} // namespace quarner
