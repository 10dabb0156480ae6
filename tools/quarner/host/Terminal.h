// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/quarner/host/Console.h"

namespace quarner::cli {

/// A terminal at which somebody can be asked.
struct Terminal {
    int keyboard = -1; ///< the descriptor from which the answer is read
    /// Shows a line of the question; null where it could not be seen.
    std::function<void(const std::string&)> show;
};

/// The terminal that the standard input is; nothing when it is none. What is shown goes through the
/// console, which must outlive the terminal, where that is one too, otherwise to the terminal that
/// controls this process.
std::optional<Terminal> terminalOfStandardInput(Console& console);

} // namespace quarner::cli
