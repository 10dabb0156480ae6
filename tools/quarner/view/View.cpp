// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/View.h"

#include "quarner/display.h"

namespace quarner::cli {

void View::fileRefused(const std::string& path, RefusalReason reason, const std::string& text) {
    DiscProjectRecords::fileRefused(path, reason, text);
    _console.error("quarner: " + safeText(text));
}

void View::ejectionDidEnd(const std::string& /*driveName*/, const std::string& problem) {
    if (!problem.empty())
        _console.error("quarner: " + safeText(problem));
}

} // namespace quarner::cli
