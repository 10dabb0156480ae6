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
#include <string_view>

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
    // A server that resets itself when its last program leaves turns away one that comes just then.
    set("DISPLAY",
        ":" + startAndRead({"Xvfb", ownDisplay(), "-noreset", "-screen", "0", "1280x1024x24",
                            "-nolisten", "tcp", "-displayfd", "{descriptor}"}));
    set("DBUS_SESSION_BUS_ADDRESS",
        startAndRead({"dbus-daemon", "--session", "--nofork", "--print-address={descriptor}"}));
    set("GTK_THEME", "Adwaita");
    set("GSETTINGS_BACKEND", "memory");
    // A window has one button, as on most desktops that have GTK's programs.
    std::filesystem::create_directories(_home.path() / ".config/gtk-4.0");
    std::ofstream(_home.file(".config/gtk-4.0/settings.ini"))
        << "[Settings]\ngtk-decoration-layout=:close\ngtk-enable-animations=false\n";
    start({"openbox"});
}

VirtualDesktop::~VirtualDesktop() {
    for (auto process = _processes.rbegin(); process != _processes.rend(); ++process) {
        kill(*process, SIGTERM);
        waitpid(*process, nullptr, 0);
    }
}

void VirtualDesktop::start(const std::vector<std::string>& command) {
    const pid_t process = fork();
    if (process == 0)
        become(command);
    _processes.push_back(process);
}

std::string VirtualDesktop::startAndRead(std::vector<std::string> command) {
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    constexpr std::string_view place = "{descriptor}";
    std::string& last = command.back();
    last.replace(last.find(place), place.size(), std::to_string(ends[1]));
    start(command);
    close(ends[1]);
    const std::string line = readLine(ends[0]);
    close(ends[0]);
    if (line.empty())
        throw std::runtime_error(command.front() + " does not start");
    return line;
}

} // namespace quarner::testing
