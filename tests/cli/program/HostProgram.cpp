// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/cli/program/HostProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace quarner::testing {
namespace {

using Clock = std::chrono::steady_clock;

/// Two ends of a pipe, or of a terminal; closed by whoever takes them.
struct Ends {
    int mine = -1;
    int its = -1;
};

Ends makePipe() {
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

Ends makeTerminal(unsigned columns) {
    Ends ends;
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = 24;
    if (openpty(&ends.mine, &ends.its, nullptr, nullptr, &size) != 0)
        throw std::runtime_error("no terminal");
    fcntl(ends.mine, F_SETFD, FD_CLOEXEC);
    return ends;
}

/// The variables for libraries that come before the program's own, and before the runtime library
/// of a sanitizer, which minds that unless it is told not to.
std::vector<std::string> preloading(const std::vector<std::string>& libraries) {
    std::string list = "LD_PRELOAD=";
    for (const std::string& library : libraries)
        list += library + ":";
    const char* const options = std::getenv("ASAN_OPTIONS");
    return {list, std::string("ASAN_OPTIONS=") + (options == nullptr ? "" : options) +
                      ":verify_asan_link_order=0"};
}

std::vector<std::string> commandLine(const std::vector<std::string>& arguments,
                                     const HostSettings& settings) {
    std::vector<std::string> words = {"env"};
    words.insert(words.end(), settings.environment.begin(), settings.environment.end());
    const std::vector<std::string> preloads = preloading(settings.preloads);
    words.insert(words.end(), preloads.begin(), preloads.end());
    words.insert(words.end(), settings.wrapper.begin(), settings.wrapper.end());
    words.push_back(settings.program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

/// A shell starts its background jobs with SIGINT ignored, and the program heeds that: it would not
/// end by the signal.
void heedSignals() {
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
        std::signal(number, SIG_DFL);
}

/// Becomes the program; called in the child process.
[[noreturn]] void become(std::vector<std::string> words, const HostSettings& settings, int out,
                         int err) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    heedSignals();
    const int in = settings.isTypedTo ? out : open("/dev/null", O_RDONLY);
    if (dup2(in, 0) == 0 && dup2(out, 1) == 1 && dup2(err, 2) == 2 &&
        chdir(settings.folder.c_str()) == 0)
        execvp(pointers[0], pointers.data());
    _exit(127);
}

} // namespace

HostProgram::HostProgram(const std::vector<std::string>& arguments, const HostSettings& settings) {
    const bool onTerminal = settings.terminalColumns > 0;
    const Ends out = onTerminal ? makeTerminal(settings.terminalColumns) : makePipe();
    const Ends err = onTerminal ? Ends{-1, out.its} : makePipe();
    const auto words = commandLine(arguments, settings);
    _process = fork();
    if (_process == 0)
        become(words, settings, out.its, err.its);
    close(out.its);
    if (!onTerminal)
        close(err.its);
    _out = out.mine;
    _err = err.mine;
}

HostProgram::~HostProgram() {
    if (_process > 0) {
        kill(_process, SIGKILL);
        waitpid(_process, nullptr, 0);
    }
    for (const int descriptor : {_out, _err})
        if (descriptor >= 0)
            close(descriptor);
}

bool HostProgram::waitForOutput(const std::string& text) {
    const auto hasCome = [&] { return _end.out.find(text) != std::string::npos; };
    readUntil(hasCome, 30'000);
    return hasCome();
}

void HostProgram::type(const std::string& text) const {
    if (write(_out, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("nobody reads what is typed");
}

void HostProgram::signal(int number) const { kill(_process, number); }

void HostProgram::stopReading() {
    close(_out);
    _out = -1;
}

HostEnd HostProgram::wait() {
    readUntil([] { return false; }, 60'000);
    if (_out >= 0 || _err >= 0)
        kill(_process, SIGKILL);
    int status = 0;
    waitpid(_process, &status, 0);
    _process = -1;
    _end.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return _end;
}

void HostProgram::readUntil(const std::function<bool()>& condition, int milliseconds) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (!condition() && (_out >= 0 || _err >= 0) && Clock::now() < end) {
        std::array<pollfd, 2> waiting = {{{_out, POLLIN, 0}, {_err, POLLIN, 0}}};
        poll(waiting.data(), waiting.size(), 100);
        if (waiting[0].revents != 0)
            readSome(_out, _end.out);
        if (waiting[1].revents != 0)
            readSome(_err, _end.err);
    }
}

void HostProgram::readSome(int& descriptor, std::string& text) {
    std::array<char, 4096> buffer = {};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
        return;
    }
    close(descriptor); // the end; a terminal tells it as an error
    descriptor = -1;
}

HostEnd runHost(const std::vector<std::string>& arguments, const HostSettings& settings) {
    return HostProgram(arguments, settings).wait();
}

} // namespace quarner::testing
