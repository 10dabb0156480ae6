// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "quarner/scripted.h"
#include "tools/quarner/command/Run.h"
#include "tools/quarner/host/Console.h"
#include "tools/quarner/host/EventLoop.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// Runs command lines within the test, on a scripted platform that the main loop turns.
class TestHost {
public:
    explicit TestHost(Screen screen = {}) : console(_out, _err, std::move(screen)) {
        _pump = g_idle_add(
            [](gpointer self) -> gboolean {
                static_cast<TestHost*>(self)->turn();
                return G_SOURCE_CONTINUE;
            },
            this);
    }
    ~TestHost() { g_source_remove(_pump); }
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    /// The exit status of a command line.
    int run(const std::vector<std::string>& arguments) {
        _out.str("");
        _err.str("");
        const auto parsed = parseCommandLine(arguments);
        if (const auto* const message = std::get_if<Message>(&parsed))
            return static_cast<int>(showMessage(console, *message));
        Host host{console,
                  loop,
                  [this](const ImageDriveOptions& request) { return addImageDrive(request); },
                  [this](std::function<void()> handler) { _interruption = std::move(handler); },
                  [this] { ++platformEndings; },
                  [this] { return receivesDriveEvents; },
                  terminal()};
        return static_cast<int>(runCommand(host, std::get<Command>(parsed)));
    }

    /// What Ctrl-C does. Any thread. The future is ready once the command has dealt with it.
    std::future<void> interrupt() {
        const auto dealtWith = std::make_shared<std::promise<void>>();
        loop.post([this, dealtWith] {
            std::exchange(_interruption, nullptr)();
            dealtWith->set_value();
        });
        return dealtWith->get_future();
    }

    /// From now on nobody reads what the program tells.
    void stopReading() { _out.setstate(std::ios::badbit); }

    std::string out() const { return _out.str(); }
    std::string err() const { return _err.str(); }
    std::vector<std::string> outLines() const { return linesOf(out()); }

    EventLoop loop;
    ScriptedPlatform platform;
    /// Called with each turn of the main loop.
    std::function<void()> atEachTurn;
    /// What the commands asked for.
    std::vector<ImageDriveOptions> images;
    int platformEndings = 0;
    /// What the host reports about the machine, where the commands read what is typed, and whether
    /// a question is seen there.
    bool receivesDriveEvents = true;
    std::optional<int> keyboard;
    bool isTerminalSeen = true;

private:
    std::ostringstream _out;
    std::ostringstream _err;

public:
    Console console;

private:
    std::string addImageDrive(const ImageDriveOptions& request) {
        images.push_back(request);
        DiscScript disc;
        if (request.minutes == 74)
            disc.spaceFree = DRMSF::msfWithFrames(333'000);
        platform.addDrive({.name = "Image " + request.path, .disc = disc});
        return "Image " + request.path;
    }

    std::optional<Terminal> terminal() {
        if (!keyboard)
            return std::nullopt;
        if (!isTerminalSeen)
            return Terminal{*keyboard, nullptr};
        return Terminal{*keyboard, [this](const std::string& line) { console.error(line); }};
    }

    void turn() {
        if (atEachTurn)
            atEachTurn();
        if (!platform.runOnce())
            g_usleep(200);
    }

    std::function<void()> _interruption;
    guint _pump = 0;
};

} // namespace quarner::cli
