// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnQuestion.h"

#include <glib.h>
#include <termios.h>

#include <utility>

#include "tools/quarner/command/DiscText.h"
#include "tools/quarner/host/LineReader.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {

BurnQuestion::BurnQuestion(EventLoop& loop, Terminal terminal, const std::string& drive,
                           std::optional<std::string> title)
    : _loop(loop), _terminal(std::move(terminal)), _device(drive), _title(std::move(title)) {
    _device.setDelegate(this);
}

BurnQuestion::Answer BurnQuestion::ask() {
    const std::vector<std::string> asked = text();
    const std::optional<Dictionary> status = _device.status();
    tcflush(_terminal.keyboard, TCIFLUSH); // what was typed before is no answer to this
    for (const std::string& line : asked)
        _terminal.show(line);
    if (!isYesTyped())
        return Answer::No;
    // Two discs of a kind look alike, but what is on them is not equally long.
    const bool isSameDisc = !_hasDiscChanged && status == _device.status() && asked == text();
    return isSameDisc ? Answer::Yes : Answer::OtherDisc;
}

bool BurnQuestion::isYesTyped() {
    std::optional<std::string> answer;
    const LineReader reader(_terminal.keyboard, [&](std::optional<std::string> line) {
        answer = std::move(line);
        _loop.quit();
    });
    _loop.run();
    return answer && isYes(*answer);
}

std::vector<std::string> BurnQuestion::text() const {
    std::vector<std::string> lines = {"Drive:   " + safeText(_device.deviceName().value_or("")),
                                      "Disc:    " + discSummary(_device)};
    if (!_device.isDiscBlank())
        lines.emplace_back("         Its content will be erased.");
    lines.push_back("Title:   " + safeText(_title.value_or("")));
    lines.emplace_back("Burn this disc? Type y to burn it, anything else to cancel.");
    return lines;
}

bool isYes(const std::string& answer) {
    const std::string word = answer.substr(0, answer.find_last_not_of(" \t\r") + 1);
    return g_ascii_strcasecmp(word.c_str(), "y") == 0 ||
           g_ascii_strcasecmp(word.c_str(), "yes") == 0;
}

} // namespace quarner::cli
