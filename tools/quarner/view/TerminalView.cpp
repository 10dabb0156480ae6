// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/TerminalView.h"

#include <algorithm>

#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {

void TerminalView::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                              std::uint64_t of) {
    console().status("Adding " + std::to_string(index) + " of " + std::to_string(of) + ": " +
                     safeText(displayName));
}

void TerminalView::show(const BurnStep& step) {
    const Screen& screen = console().screen();
    const std::size_t columns = std::max<std::size_t>(screen.columns(), 2) - 1;
    console().status(step.hasProgress() ? progressLine(step.text(), step.fraction, step.lefttime,
                                                       columns, screen.isUtf8)
                                        : step.text());
}

} // namespace quarner::cli
