// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/CompilationText.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "quarner/display.h"
#include "tools/quarner/text/Columns.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

constexpr std::size_t numberColumns = 3;
constexpr std::size_t timeColumns = 10;
constexpr std::size_t sizeColumns = 10;
constexpr std::size_t widestTable = 78;

std::string row(std::string_view number, std::string_view name, std::string_view time,
                std::string_view size, std::size_t columns) {
    const std::size_t fixed = numberColumns + 2 + timeColumns + sizeColumns;
    const std::size_t nameColumns =
        std::max<std::size_t>(std::min(columns, widestTable), fixed) - fixed;
    return rightAligned(number, numberColumns) + "  " + leftAligned(name, nameColumns) +
           rightAligned(time, timeColumns) + rightAligned(size, sizeColumns);
}

std::string sumRow(const Compilation& compilation, std::size_t columns) {
    const DiscCapacity& capacity = compilation.capacity;
    const bool countsTime = compilation.kind == DiscKind::Audio;
    return row("", capacity.contentText, countsTime ? capacity.usedText : "",
               capacity.fileBytesText, columns);
}

constexpr std::size_t widestBar = 32;
constexpr std::size_t narrowestBar = 8;

double keptWithinOne(double fraction) { return fraction > 0 ? std::min(fraction, 1.0) : 0.0; }

std::string percentText(double fraction) {
    const auto percent = static_cast<int>(std::floor(keptWithinOne(fraction) * 100));
    return _("{percent}%", {{"percent", std::to_string(percent)}});
}

} // namespace

std::vector<std::string> trackList(const Compilation& compilation, std::size_t columns) {
    std::vector<std::string> lines;
    for (const DiscItemRef& item : *compilation.items)
        lines.push_back(row(std::to_string(lines.size() + 1), safeText(item->displayName),
                            item->duration, item->size, columns));
    if (!lines.empty())
        lines.push_back(sumRow(compilation, columns));
    return lines;
}

std::string bar(double fraction, std::size_t columns, bool isUtf8) {
    const std::size_t cells = std::max<std::size_t>(columns, 3) - 2;
    const double kept = keptWithinOne(fraction);
    auto filled = static_cast<std::size_t>(std::floor(kept * static_cast<double>(cells)));
    if (kept > 0)
        filled = std::max<std::size_t>(filled, 1);
    std::string text = "[";
    for (std::size_t cell = 0; cell < cells; ++cell)
        text += cell < filled ? (isUtf8 ? "█" : "#") : (isUtf8 ? "░" : "-");
    return text + "]";
}

std::string usageLine(const DiscCapacity& capacity, std::size_t columns, bool isUtf8) {
    if (!capacity.isDiscKnown)
        return _("There is no disc in the drive.");
    const std::string figures = _("{used} of {total}, {verdict}", {{"used", capacity.usedText},
                                                                   {"total", capacity.totalText},
                                                                   {"verdict", capacity.verdict}});
    const std::size_t text = displayWidth(figures) + 1;
    if (text + narrowestBar > columns)
        return shortened(figures, columns);
    const double fraction = capacity.total == 0 ? 1.0
                                                : static_cast<double>(capacity.used) /
                                                      static_cast<double>(capacity.total);
    return bar(fraction, std::min(widestBar, columns - text), isUtf8) + " " + figures;
}

std::string progressLine(const DiscBurnProgress& progress, std::size_t columns, bool isUtf8) {
    const std::string percent =
        rightAligned(percentText(progress.fraction), displayWidth(percentText(1)));
    const std::string time = progress.timeLeftText.empty() ? "--:--" : progress.timeLeftText;
    const std::string left = "  " + _("{time} left", {{"time", rightAligned(time, 5)}});
    const std::string head = progress.text + " ";
    const std::size_t figures = displayWidth(percent) + displayWidth(left);
    const std::size_t text = displayWidth(head) + 1 + figures;
    if (text + narrowestBar <= columns)
        return head + bar(progress.fraction, std::min(widestBar, columns - text), isUtf8) + " " +
               percent + left;
    if (displayWidth(head) + figures <= columns)
        return head + percent + left;
    const std::string end = " " + percentText(progress.fraction);
    if (columns <= displayWidth(end))
        return percentText(progress.fraction);
    return shortened(progress.text, columns - displayWidth(end)) + end;
}

} // namespace quarner::cli
