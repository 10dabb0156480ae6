// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/VirtualDesktop.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace quarner::testing {
namespace {

/// Becomes a program that ends with this process; called in the child.
[[noreturn]] void become(std::vector<std::string> words) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

std::string readLine(int descriptor) {
    std::string line;
    char next = 0;
    while (read(descriptor, &next, 1) == 1 && next != '\n')
        line += next;
    return line;
}

/// A number of its own: a server that ends removes the socket of its number, which another one may
/// just have taken.
std::string ownDisplay() {
    constexpr int first = 100;
    constexpr int numbers = 50'000;
    return ":" + std::to_string(first + getpid() % numbers);
}

void set(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

} // namespace

VirtualDesktop& VirtualDesktop::shared() {
    static VirtualDesktop desktop;
    return desktop;
}

VirtualDesktop::VirtualDesktop() {
    set("HOME", home());
    set("XDG_RUNTIME_DIR", home());
    chmod(home().c_str(), 0700);
    set("DISPLAY",
        ":" + start({"Xvfb", ownDisplay(), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"},
                    "-displayfd"));
    set("DBUS_SESSION_BUS_ADDRESS",
        start({"dbus-daemon", "--session", "--nofork"}, "--print-address"));
    // Where nothing draws on a graphics card, this is quicker; and nobody sees the animations.
    set("GSK_RENDERER", "cairo");
    set("GTK_THEME", "Adwaita");
    set("GSETTINGS_BACKEND", "memory");
    // A window has one button, as on most desktops that have GTK's programs.
    std::filesystem::create_directories(_home.path() / ".config/gtk-4.0");
    std::ofstream(_home.file(".config/gtk-4.0/settings.ini"))
        << "[Settings]\ngtk-decoration-layout=:close\ngtk-enable-animations=false\n";
    start({"openbox"}, nullptr);
}

VirtualDesktop::~VirtualDesktop() {
    for (auto process = _processes.rbegin(); process != _processes.rend(); ++process) {
        kill(*process, SIGTERM);
        waitpid(*process, nullptr, 0);
    }
}

/// Returns the line that it writes to the descriptor that it is told by the option.
std::string VirtualDesktop::start(const std::vector<std::string>& command,
                                  const char* answerOption) {
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    const pid_t process = fork();
    if (process == 0) {
        std::vector<std::string> words = command;
        const bool isOneWord = answerOption != nullptr && answerOption[1] == '-';
        if (isOneWord) {
            words.push_back(std::string(answerOption) + "=" + std::to_string(ends[1]));
        } else if (answerOption != nullptr) {
            words.emplace_back(answerOption);
            words.push_back(std::to_string(ends[1]));
        }
        become(std::move(words));
    }
    close(ends[1]);
    _processes.push_back(process);
    std::string answer;
    if (answerOption != nullptr) {
        answer = readLine(ends[0]);
        if (answer.empty())
            throw std::runtime_error(command.front() + " does not start");
    }
    close(ends[0]);
    return answer;
}

} // namespace quarner::testing
