// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <string>

#include "quarner/project/DiscProject.h"
#include "tools/quarner/host/Host.h"

namespace quarner::cli {

/// An answer to the question whether the disc in a drive is to be burnt.
enum class BurnAnswer {
    No,
    Yes,
    OtherDisc, ///< yes, but not to the disc that is in the drive now
};

/// Runs the main loop until a condition holds or the command is cancelled.
using Wait = std::function<void(const std::function<bool()>& isOver)>;

/// Asks somebody at a terminal: shows the drive, the disc, what happens to it, the title and the
/// question, and waits until a line was typed after that. A wait that ends before means no.
BurnAnswer askToBurn(DiscProject& project, DiscDrive::Id drive, const Terminal& terminal,
                     const std::string& title, const Wait& wait);

/// Waits for what the drive says of its disc now. Not every drive reports that its disc was
/// changed.
void examineDisc(DiscProject& project, DiscDrive::Id drive, const Wait& wait);

/// Whether an answer is yes; whatever else is typed means no.
bool isYes(const std::string& answer);

} // namespace quarner::cli
