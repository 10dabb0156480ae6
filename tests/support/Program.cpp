// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

extern char** environ;

namespace quarner::testing {

namespace {

/// Starts the program with its output in a pipe. Returns its process id, or -1.
pid_t start(const std::vector<std::string>& arguments, int output) {
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    pid_t process = -1;
    const int error =
        posix_spawnp(&process, words.front(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

std::string readAll(int input) {
    std::string text;
    std::array<char, 65536> buffer = {};
    for (ssize_t count = 0; (count = ::read(input, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

ProgramResult runProgram(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    const pid_t process = start(arguments, ends[1]);
    close(ends[1]);
    ProgramResult result{.status = 127, .output = readAll(ends[0])};
    close(ends[0]);
    int status = 0;
    if (process > 0 && waitpid(process, &status, 0) == process)
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

} // namespace quarner::testing
