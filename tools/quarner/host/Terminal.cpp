// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <memory>

namespace quarner::cli {
namespace {

/// The terminal that controls this process, as long as this object lives.
class ControllingTerminal {
public:
    ControllingTerminal() = default;
    ~ControllingTerminal() {
        if (isOpen())
            close(_descriptor);
    }
    ControllingTerminal(const ControllingTerminal&) = delete;
    ControllingTerminal& operator=(const ControllingTerminal&) = delete;

    bool isOpen() const { return _descriptor >= 0; }
    void line(std::string text) const {
        text += '\n';
        // One that cannot be written to any more cannot be read from either.
        [[maybe_unused]] const ssize_t written =
            TEMP_FAILURE_RETRY(write(_descriptor, text.data(), text.size()));
    }

private:
    const int _descriptor = open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC);
};

std::function<void(const std::string&)> wayToTerminal(Console& console) {
    if (isatty(STDERR_FILENO) == 1)
        return [&console](const std::string& text) { console.error(text); };
    if (isatty(STDOUT_FILENO) == 1)
        return [&console](const std::string& text) { console.line(text); };
    const auto terminal = std::make_shared<ControllingTerminal>();
    if (!terminal->isOpen())
        return nullptr;
    return [terminal](const std::string& text) { terminal->line(text); };
}

} // namespace

std::optional<Terminal> terminalOfStandardInput(Console& console) {
    if (isatty(STDIN_FILENO) != 1)
        return std::nullopt;
    return Terminal{STDIN_FILENO, wayToTerminal(console)};
}

} // namespace quarner::cli
