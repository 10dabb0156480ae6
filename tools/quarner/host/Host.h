// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "quarner/desktop.h"
#include "tools/quarner/host/Console.h"
#include "tools/quarner/host/EventLoop.h"

namespace quarner::cli {

/// A terminal at which somebody can be asked.
struct Terminal {
    int keyboard = -1; ///< the descriptor from which the answer is read
    /// Shows a line of the question; null where it could not be seen.
    std::function<void(const std::string&)> show;
};

/// What the commands need of the program around them. They run on whichever platform is installed.
struct Host {
    Console& console;
    EventLoop& loop;
    /// Adds an image drive to the platform and returns its display name. Throws `UsageProblem`
    /// when that cannot be, or when a blank disc could not be burnt there.
    std::function<std::string(const ImageDriveOptions&)> addImageDrive;
    /// Says what the next signal that asks the program to end runs, once, on the main loop; null
    /// for ending at once.
    std::function<void(std::function<void()>)> onInterruption;
    /// Ends the platform without waiting for the main loop: cancels what is under way, and returns
    /// when no thread of the framework is at work any more.
    std::function<void()> endPlatform;
    /// Whether the platform is notified of drives that come and go, and of discs.
    std::function<bool()> receivesDriveEvents;
    /// Where somebody is asked; nothing where nobody is there.
    std::optional<Terminal> terminal = std::nullopt;
};

/// A command line that names what cannot be used; `what` is one or more lines for people.
class UsageProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace quarner::cli
