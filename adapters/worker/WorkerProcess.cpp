// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/WorkerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/auxv.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

#include "adapters/engine/BurnFailure.h"
#include "adapters/posix/OwnTree.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds timeToEnd{500};
constexpr int freeDescriptor = Channel::streamDescriptor + 1;

/// Processes that did not end in time. Their entries in the system's table are freed later.
class Leftovers {
public:
    static Leftovers& shared() {
        static auto* const leftovers = new Leftovers; // in use until the process ends
        return *leftovers;
    }
    void add(FileDescriptor process) {
        const std::lock_guard lock(_mutex);
        _processes.push_back(std::move(process));
    }
    void collect() {
        const std::lock_guard lock(_mutex);
        std::erase_if(_processes, isCollected);
    }
    /// Frees the entry of a process that has ended. False if it still runs. By its descriptor: the
    /// host may have freed the entry, and given the number to a process of its own.
    static bool isCollected(const FileDescriptor& process) {
        siginfo_t info = {};
        return waitid(P_PIDFD, id_t(process.number()), &info, WEXITED | WNOHANG) != 0 ||
               info.si_pid != 0;
    }

private:
    std::mutex _mutex;
    std::vector<FileDescriptor> _processes;
};

struct Ends {
    FileDescriptor ours;
    FileDescriptor theirs;
};

/// A descriptor that has just been opened, with a number above those that the worker's ends are
/// given, and above the standard streams, which a host may have closed.
FileDescriptor moved(const FileDescriptor& descriptor) {
    FileDescriptor result(
        descriptor.isOpen() ? fcntl(descriptor.number(), F_DUPFD_CLOEXEC, freeDescriptor) : -1);
    if (!result.isOpen())
        throw std::system_error(errno, std::generic_category());
    return result;
}

Ends connection(int type) {
    std::array<int, 2> ends = {-1, -1};
    if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    const FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]);
    return {moved(ours), moved(theirs)};
}

class SpawnOptions {
public:
    SpawnOptions(int messages, int stream) {
        posix_spawn_file_actions_init(&_actions);
        posix_spawn_file_actions_addopen(&_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&_actions, messages, Channel::messageDescriptor);
        posix_spawn_file_actions_adddup2(&_actions, stream, Channel::streamDescriptor);
        posix_spawn_file_actions_addclosefrom_np(&_actions, freeDescriptor);
        posix_spawnattr_init(&_attributes);
        sigset_t signals = {};
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&_attributes, &signals);
        posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                   POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnOptions() {
        posix_spawn_file_actions_destroy(&_actions);
        posix_spawnattr_destroy(&_attributes);
    }
    SpawnOptions(const SpawnOptions&) = delete;
    SpawnOptions& operator=(const SpawnOptions&) = delete;

    pid_t spawn(const std::string& program) const {
        std::string name = program;
        std::array<char*, 2> arguments = {name.data(), nullptr};
        pid_t process = -1;
        const int error = posix_spawn(&process, program.c_str(), &_actions, &_attributes,
                                      arguments.data(), environ);
        if (error != 0)
            throw std::system_error(error, std::generic_category());
        return process;
    }

private:
    posix_spawn_file_actions_t _actions = {};
    posix_spawnattr_t _attributes = {};
};

/// Returns a descriptor of a child; none if it has ended and nobody needs to wait for it, because
/// the host ignores SIGCHLD. A child that nothing could end later is ended at once.
FileDescriptor descriptorOf(pid_t child) {
    FileDescriptor descriptor(int(syscall(SYS_pidfd_open, child, 0)));
    if (!descriptor.isOpen() && errno == ESRCH)
        return descriptor;
    try {
        return moved(descriptor);
    } catch (const std::system_error&) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        throw;
    }
}

} // namespace

std::string workerFolder() {
    if (getauxval(AT_SECURE) != 0)
        return QUARNER_WORKER_DIR;
    const char* const named = getenv("QUARNER_WORKERS");
    return named != nullptr
               ? named
               : folderOfOwnTree(QUARNER_WORKER_FOLDER, "quarner-drive", QUARNER_WORKER_DIR);
}

WorkerProcess::WorkerProcess(const std::string& name) {
    Leftovers::shared().collect();
    const std::string program = workerFolder() + '/' + name;
    try {
        Ends messages = connection(SOCK_SEQPACKET);
        Ends stream = connection(SOCK_STREAM);
        _pid = SpawnOptions(messages.theirs.number(), stream.theirs.number()).spawn(program);
        _process = descriptorOf(_pid);
        _channel = Channel(std::move(messages.ours), std::move(stream.ours));
    } catch (const std::system_error& error) {
        throw BurnFailure(DRError::Internal,
                          text("{program} cannot be started: {error}",
                               {{"program", program}, {"error", error.code().message()}}));
    }
}

WorkerProcess::~WorkerProcess() {
    _channel.shutDown();
    if (!_isDetached && !waitForEnd(timeToEnd)) {
        kill();
        waitForEnd(timeToEnd);
    }
    if (_process.isOpen() && !Leftovers::isCollected(_process))
        Leftovers::shared().add(std::move(_process));
}

void WorkerProcess::kill() const {
    syscall(SYS_pidfd_send_signal, _process.number(), SIGKILL, nullptr, 0);
}

bool WorkerProcess::waitForEnd(std::chrono::milliseconds most) const {
    if (!_process.isOpen())
        return true;
    const auto end = std::chrono::steady_clock::now() + most;
    std::array<pollfd, 1> waiting = {{{_process.number(), POLLIN, 0}}};
    for (auto left = most; left.count() >= 0; left = std::chrono::ceil<std::chrono::milliseconds>(
                                                  end - std::chrono::steady_clock::now()))
        if (const int ready = poll(waiting.data(), waiting.size(), int(left.count()));
            ready >= 0 || errno != EINTR)
            return ready > 0;
    return false;
}

} // namespace quarner
