// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "quarner/project/DiscProject.h"
#include "tools/quarner/host/Host.h"

namespace quarner::cli {

/// The question whether the disc in a drive is to be burnt, to somebody at a terminal.
class BurnQuestion {
public:
    enum class Answer {
        No,
        Yes,
        OtherDisc, ///< yes, but not to the disc that is in the drive now
    };
    /// Runs the main loop until a condition holds or the command is cancelled.
    using Wait = std::function<void(const std::function<bool()>& isOver)>;

    /// The project must outlive the question.
    BurnQuestion(DiscProject& project, DiscDrive::Id drive, Terminal terminal, std::string title);

    /// Shows the drive, the disc, what happens to it, the title and the question, and waits until a
    /// line was typed after that. A wait that ends before means no. Once only.
    Answer ask(const Wait& wait);

private:
    std::vector<std::string> text(const DiscDrive& drive) const;
    bool isYesTyped(const Wait& wait) const;

    DiscProject& _project;
    const DiscDrive::Id _drive;
    const Terminal _terminal;
    const std::string _title;
};

/// Waits for what the drive says of its disc now. Not every drive reports that its disc was
/// changed.
void examineDisc(DiscProject& project, DiscDrive::Id drive, const BurnQuestion::Wait& wait);

/// Whether an answer is yes; whatever else is typed means no.
bool isYes(const std::string& answer);

} // namespace quarner::cli
