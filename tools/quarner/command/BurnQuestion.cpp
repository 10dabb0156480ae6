// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnQuestion.h"

#include <glib-unix.h>
#include <termios.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <utility>

#include "quarner/display.h"

namespace quarner::cli {
namespace {

/// Becomes readable, or comes to its end, while the main loop runs.
class Readable {
public:
    explicit Readable(int descriptor) {
        const auto note = [](gint, GIOCondition, gpointer self) -> gboolean {
            static_cast<Readable*>(self)->isReadable = true;
            return G_SOURCE_CONTINUE;
        };
        const auto anything = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
        _source = g_unix_fd_add(descriptor, anything, note, this);
    }
    ~Readable() { g_source_remove(_source); }
    Readable(const Readable&) = delete;
    Readable& operator=(const Readable&) = delete;

    bool isReadable = false;

private:
    guint _source = 0;
};

} // namespace

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
    examineDisc(_project, _drive, wait);
    return asked == _project.drive(_drive) ? Answer::Yes : Answer::OtherDisc;
}

/// A terminal becomes readable when a line is complete. What was typed after it is left.
bool BurnQuestion::isYesTyped(const Wait& wait) const {
    const Readable keyboard(_terminal.keyboard);
    wait([&] { return keyboard.isReadable; });
    std::string line;
    char letter = 0;
    while (keyboard.isReadable && TEMP_FAILURE_RETRY(read(_terminal.keyboard, &letter, 1)) == 1 &&
           letter != '\n')
        line += letter;
    return letter == '\n' && isYes(line);
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

void examineDisc(DiscProject& project, DiscDrive::Id drive, const BurnQuestion::Wait& wait) {
    const auto isDone = std::make_shared<bool>(false); // the answer may come after the wait
    project.examine(drive, [isDone] { *isDone = true; });
    wait([&] { return *isDone; });
}

bool isYes(const std::string& answer) {
    const std::string word = answer.substr(0, answer.find_last_not_of(" \t\r") + 1);
    return g_ascii_strcasecmp(word.c_str(), "y") == 0 ||
           g_ascii_strcasecmp(word.c_str(), "yes") == 0;
}

} // namespace quarner::cli
