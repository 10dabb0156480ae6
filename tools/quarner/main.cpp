// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "quarner/desktop.h"
#include "tools/quarner/command/Commands.h"
#include "tools/quarner/command/Run.h"
#include "tools/quarner/host/Interruptions.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

/// The desktop platform, for as long as this object lives.
class InstalledPlatform {
public:
    explicit InstalledPlatform(std::function<void(const std::string&)> log) {
        installDesktopPlatform({.log = std::move(log)});
    }
    ~InstalledPlatform() { uninstallDesktopPlatform(); }
    InstalledPlatform(const InstalledPlatform&) = delete;
    InstalledPlatform& operator=(const InstalledPlatform&) = delete;
};

/// A standard stream that is closed would give its number to the next file that is opened, the
/// image for one, which what is printed would then be written into.
void fillClosedStandardStreams() {
    int descriptor = STDIN_FILENO;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO)
        close(descriptor);
}

std::string addDesktopImageDrive(const ImageDriveOptions& options) {
    if (!options.loadExisting)
        if (const auto problem = findImageProblem(options.path)) {
            const DiscProblem meaning = problemForCode(problem->code);
            throw UsageProblem(explained(meaning.text, problem->info, meaning.advice));
        }
    std::string name = addImageDrive(options);
    if (name.empty())
        throw UsageProblem(_("the image cannot be used"));
    return name;
}

/// Where a question is shown: through the console if that is a terminal, otherwise on the terminal
/// that controls this process; null if it could not be seen.
std::function<void(const std::string&)> wayToTerminal(Console& console) {
    if (isatty(STDERR_FILENO) == 1)
        return [&console](const std::string& text) { console.error(text); };
    if (isatty(STDOUT_FILENO) == 1)
        return [&console](const std::string& text) { console.line(text); };
    const auto terminal = std::make_shared<std::ofstream>("/dev/tty");
    if (!terminal->is_open())
        return nullptr;
    return [terminal](const std::string& text) { *terminal << text << std::endl; };
}

std::optional<Terminal> terminalOfStandardInput(Console& console) {
    if (isatty(STDIN_FILENO) != 1)
        return std::nullopt;
    return Terminal{STDIN_FILENO, wayToTerminal(console)};
}

/// How long the report of a forced end may take: whoever reads the output may not take it.
constexpr std::chrono::milliseconds reportTimeout{500};

/// Ends the process while another thread of it is stuck.
[[noreturn]] void exitNow(Console& console, bool json) {
    constexpr int status = static_cast<int>(ExitStatus::Canceled);
    std::thread([&console, json] {
        reportForcedEnd(console, json);
        _exit(status);
    }).detach();
    std::this_thread::sleep_for(reportTimeout);
    _exit(status);
}

ExitStatus runOnDesktop(Console& console, const Command& command) {
    EventLoop loop;
    // Before the platform makes its threads.
    Interruptions interruptions(loop, [&] { exitNow(console, command.json); });
    const InstalledPlatform platform([&, isShown = command.verbose](const std::string& line) {
        if (isShown)
            console.error(line);
    });
    Host host{console,
              loop,
              addDesktopImageDrive,
              [&](std::function<void()> handler) { interruptions.setHandler(std::move(handler)); },
              uninstallDesktopPlatform,
              receivesDriveEvents,
              command.json ? std::nullopt : terminalOfStandardInput(console)};
    return runCommand(host, command);
}

ExitStatus runProgram(const std::vector<std::string>& arguments) {
    fillClosedStandardStreams();
    words::useLanguageOfUser();
    // A reader that goes away, or a limit on the size of files, does not end a burn halfway.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    Console console(std::cout, std::cerr, screenOfStandardOutput());
    const auto parsed = parseCommandLine(arguments);
    const auto* const message = std::get_if<Message>(&parsed);
    return statusAfterOutput(console, message != nullptr
                                          ? showMessage(console, *message)
                                          : runOnDesktop(console, std::get<Command>(parsed)));
}

} // namespace
} // namespace quarner::cli

int main(int count, char** arguments) {
    // Already now: until the signals are served, one would end the program by itself.
    quarner::cli::Interruptions::blockSignals();
    try {
        const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
        return static_cast<int>(quarner::cli::runProgram(words));
    } catch (const std::exception& failure) {
        std::cerr << "quarner: " << failure.what() << '\n';
    } catch (...) {
        std::cerr << "quarner: " << quarner::words::_("an unknown failure") << '\n';
    }
    return static_cast<int>(quarner::cli::ExitStatus::Failed);
}
