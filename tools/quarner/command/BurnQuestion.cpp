// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnQuestion.h"

#include <glib-unix.h>
#include <termios.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "quarner/display.h"
#include "tools/quarner/text/Columns.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

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

/// A terminal becomes readable when a line is complete. What was typed after it is left.
bool isYesTyped(int descriptor, const Wait& wait) {
    const Readable keyboard(descriptor);
    wait([&] { return keyboard.isReadable; });
    std::string line;
    char letter = 0;
    while (keyboard.isReadable && TEMP_FAILURE_RETRY(read(descriptor, &letter, 1)) == 1 &&
           letter != '\n')
        line += letter;
    return letter == '\n' && isYes(line);
}

std::vector<std::string> questionAbout(const DiscDrive& drive, const std::string& title) {
    std::vector<std::string> lines = {
        labelled(Label::Drive, safeText(drive.name)),
        labelled(Label::Disc, safeText(textForDiscAndFreeTime(drive)))};
    if (!drive.isBlank)
        lines.push_back(labelled(Label::None, _("Its content will be erased.")));
    lines.push_back(labelled(Label::Title, safeText(title)));
    lines.push_back(_("Burn this disc? Type y to burn it, anything else to cancel."));
    return lines;
}

} // namespace

BurnAnswer askToBurn(DiscProject& project, DiscDrive::Id drive, const Terminal& terminal,
                     const std::string& title, const Wait& wait) {
    const std::optional<DiscDrive> asked = project.drive(drive);
    tcflush(terminal.keyboard, TCIFLUSH); // what was typed before is no answer to this
    for (const std::string& line : questionAbout(asked.value_or(DiscDrive()), title))
        terminal.show(line);
    if (!isYesTyped(terminal.keyboard, wait))
        return BurnAnswer::No;
    examineDisc(project, drive, wait);
    return asked == project.drive(drive) ? BurnAnswer::Yes : BurnAnswer::OtherDisc;
}

void examineDisc(DiscProject& project, DiscDrive::Id drive, const Wait& wait) {
    const auto isDone = std::make_shared<bool>(false); // the answer may come after the wait
    project.examine(drive, [isDone] { *isDone = true; });
    wait([&] { return *isDone; });
}

bool isYes(const std::string& answer) {
    const std::string word = answer.substr(0, answer.find_last_not_of(" \t\r") + 1);
    // TRANSLATORS: The answers that mean yes, in lower case; "y" and "yes" mean yes as well.
    std::istringstream answers("y yes " + _("y yes"));
    for (std::string yes; answers >> yes;)
        if (g_ascii_strcasecmp(word.c_str(), yes.c_str()) == 0)
            return true;
    return false;
}

} // namespace quarner::cli
