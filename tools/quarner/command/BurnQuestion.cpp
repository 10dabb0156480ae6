// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnQuestion.h"

#include <glib.h>

#include "tools/quarner/command/DiscText.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {

std::vector<std::string> burnQuestion(const QuarnerDevice& device,
                                      const std::optional<std::string>& title) {
    std::vector<std::string> lines = {"Drive:   " + safeText(device.deviceName().value_or("")),
                                      "Disc:    " + discSummary(device)};
    if (!device.isDiscBlank())
        lines.emplace_back("         What is on it will be erased.");
    lines.push_back("Title:   " + safeText(title.value_or("")));
    lines.emplace_back("Burn this disc? Type y to burn it, anything else to leave it as it is.");
    return lines;
}

bool isYes(const std::string& answer) {
    const std::string word = answer.substr(0, answer.find_last_not_of(" \t\r") + 1);
    return g_ascii_strcasecmp(word.c_str(), "y") == 0 ||
           g_ascii_strcasecmp(word.c_str(), "yes") == 0;
}

} // namespace quarner::cli
