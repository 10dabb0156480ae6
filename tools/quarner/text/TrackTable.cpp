// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/TrackTable.h"

#include <algorithm>
#include <string_view>

#include "quarner/display.h"
#include "tools/quarner/text/Columns.h"

namespace quarner::cli {
namespace {

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

} // namespace quarner::cli
