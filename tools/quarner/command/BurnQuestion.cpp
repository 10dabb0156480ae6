// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnQuestion.h"

#include <glib.h>
#include <termios.h>

#include <memory>
#include <optional>
#include <utility>

#include "tools/quarner/host/LineReader.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {

BurnQuestion::BurnQuestion(DiscProject& project, DiscDrive::Id drive, Terminal terminal,
                           std::string title)
    : _project(project), _drive(drive), _terminal(std::move(terminal)), _title(std::move(title)) {}

BurnQuestion::Answer BurnQuestion::ask(const Wait& wait) {
    const std::optional<DiscDrive> asked = _project.drive(_drive);
    tcflush(_terminal.keyboard, TCIFLUSH); // what was typed before is no answer to this
    for (const std::string& line : text(asked.value_or(DiscDrive())))
        _terminal.show(line);
    if (!isYesTyped(wait))
        return Answer::No;
    examineDisc(wait);
    return asked == _project.drive(_drive) ? Answer::Yes : Answer::OtherDisc;
}

bool BurnQuestion::isYesTyped(const Wait& wait) const {
    bool isTyped = false;
    std::optional<std::string> answer;
    const LineReader reader(_terminal.keyboard, [&](std::optional<std::string> line) {
        isTyped = true;
        answer = std::move(line);
    });
    wait([&] { return isTyped; });
    return answer && isYes(*answer);
}

/// Not every drive reports that its disc was changed.
void BurnQuestion::examineDisc(const Wait& wait) const {
    const auto isDone = std::make_shared<bool>(false); // the answer may come after the wait
    _project.examine(_drive, [isDone] { *isDone = true; });
    wait([&] { return *isDone; });
}

std::vector<std::string> BurnQuestion::text(const DiscDrive& drive) const {
    std::vector<std::string> lines = {"Drive:   " + safeText(drive.name),
                                      "Disc:    " + safeText(textForDiscAndFreeTime(drive))};
    if (!drive.isBlank)
        lines.emplace_back("         Its content will be erased.");
    lines.push_back("Title:   " + safeText(_title));
    lines.emplace_back("Burn this disc? Type y to burn it, anything else to cancel.");
    return lines;
}

bool isYes(const std::string& answer) {
    const std::string word = answer.substr(0, answer.find_last_not_of(" \t\r") + 1);
    return g_ascii_strcasecmp(word.c_str(), "y") == 0 ||
           g_ascii_strcasecmp(word.c_str(), "yes") == 0;
}

} // namespace quarner::cli
