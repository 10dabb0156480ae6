// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Sentences.h"

#include <initializer_list>

#include "quarner/display.h"

namespace quarner::window {
namespace {

std::string onLines(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts)
        if (!part.empty())
            text += (text.empty() ? "" : "\n") + safeText(part);
    return text;
}

} // namespace

std::string textFor(const DiscProblem& problem, const std::string& detail) {
    return onLines({problem.text, detail, problem.advice});
}

std::string textFor(const DiscBurnEnd& end) {
    const BurnErrorInfo& info = end.info; // its message names the file
    return onLines({end.text, info.message.empty() ? info.path : info.message, end.advice});
}

} // namespace quarner::window
