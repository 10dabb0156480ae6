// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/optical/NodeUser.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace quarner {
namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends = {};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        out = FileDescriptor(ends[0]);
        in = FileDescriptor(ends[1]);
    }
    FileDescriptor out;
    FileDescriptor in;
};

pid_t spawn(std::string program, std::string argument, int input, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::array<char*, 3> words = {program.data(), argument.data(), nullptr};
    pid_t process = -1;
    const int error =
        posix_spawn(&process, program.c_str(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + program);
    return process;
}

} // namespace

NodeUser::NodeUser(const std::string& node) {
    Pipe input;
    Pipe output;
    _process = spawn(OPEN_NODE, node, input.out.number(), output.in.number());
    _input = std::move(input.in);
    _output = std::move(output.out);
    output.in = FileDescriptor(); // so that its end is noticed
    _opening = answer().value();
}

NodeUser::~NodeUser() {
    _input = FileDescriptor();
    wait();
}

bool NodeUser::answersWithin(std::chrono::milliseconds time) const {
    pollfd wanted = {_output.number(), POLLIN, 0};
    return poll(&wanted, 1, static_cast<int>(time.count())) == 1;
}

std::optional<int> NodeUser::answer() const {
    std::string text;
    for (char sign = 0; read(_output.number(), &sign, 1) == 1 && sign != '\n';)
        text += sign;
    return text.empty() ? std::nullopt : std::optional(std::stoi(text));
}

void NodeUser::kill() const { ::kill(_process, SIGKILL); }

int NodeUser::wait() {
    int status = 0;
    if (_process > 0 && waitpid(_process, &status, 0) == _process)
        _process = -1;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

void NodeUser::start(const std::string& call) const {
    const std::string line = call + '\n';
    if (write(_input.number(), line.data(), line.size()) < 0)
        throw std::runtime_error("the process has ended");
}

int NodeUser::ask(const std::string& call) const {
    start(call);
    return answer().value();
}

} // namespace quarner
