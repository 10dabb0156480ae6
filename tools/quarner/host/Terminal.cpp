// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/Terminal.h"

#include <unistd.h>

#include <fstream>
#include <memory>

namespace quarner::cli {
namespace {

std::function<void(const std::string&)> wayToTerminal(Console& console) {
    if (isatty(STDERR_FILENO) == 1)
        return [&console](const std::string& text) { console.error(text); };
    if (isatty(STDOUT_FILENO) == 1)
        return [&console](const std::string& text) { console.line(text); };
    const auto terminal =
        std::make_shared<std::ofstream>("/dev/tty"); // which controls this process
    if (!terminal->is_open())
        return nullptr;
    return [terminal](const std::string& text) { *terminal << text << std::endl; };
}

} // namespace

std::optional<Terminal> terminalOfStandardInput(Console& console) {
    if (isatty(STDIN_FILENO) != 1)
        return std::nullopt;
    return Terminal{STDIN_FILENO, wayToTerminal(console)};
}

} // namespace quarner::cli
