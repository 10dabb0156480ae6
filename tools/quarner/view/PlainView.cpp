// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/PlainView.h"

#include <algorithm>
#include <cmath>

#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

std::string progressText(int tenth, std::optional<std::uint64_t> lefttime) {
    const std::string left = lefttime ? ", " + timeLeftText(*lefttime) + " left" : "";
    return ": " + std::to_string(tenth * 10) + "%" + left;
}

} // namespace

void PlainView::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                           std::uint64_t of) {
    console().line("Adding " + std::to_string(index) + " of " + std::to_string(of) + ": " +
                   safeText(displayName));
}

void PlainView::show(const BurnStep& step) {
    const std::string text = step.text();
    const double kept = step.fraction > 0 ? std::min(step.fraction, 1.0) : 0.0;
    const int tenth = static_cast<int>(std::floor(kept * 10));
    const bool isNewTenth = step.hasProgress() && tenth > 0 && tenth != _lastTenth;
    if (text == _lastStep && !isNewTenth)
        return;
    _lastStep = text;
    _lastTenth = tenth;
    console().line(isNewTenth ? text + progressText(tenth, step.lefttime) : text);
}

} // namespace quarner::cli
