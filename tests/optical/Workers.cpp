// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/optical/Workers.h"

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace quarner {
namespace {

/// The fields of /proc/PID/stat, as documented in proc(5).
struct Process {
    std::string name;
    char state = 'Z';
    int parent = 0;
};

Process processOf(const std::filesystem::path& folder) {
    Process process;
    std::ifstream file(folder / "stat");
    std::ostringstream text;
    text << file.rdbuf();
    const std::string line = text.str();
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos)
        return process;
    process.name = line.substr(open + 1, close - open - 1);
    std::istringstream(line.substr(close + 1)) >> process.state >> process.parent;
    return process;
}

} // namespace

std::vector<int> workers() {
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const int number = std::atoi(entry.path().filename().c_str());
        if (number == 0)
            continue;
        const Process process = processOf(entry.path());
        if (process.parent == getpid() && process.name == "quarner-drive" && process.state != 'Z')
            found.push_back(number);
    }
    return found;
}

void signalWorkers(int signal) {
    for (const int process : workers())
        kill(process, signal);
}

bool waitForNoWorkers() {
    constexpr std::chrono::seconds longest{10};
    const auto end = std::chrono::steady_clock::now() + longest;
    while (!workers().empty()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace quarner
