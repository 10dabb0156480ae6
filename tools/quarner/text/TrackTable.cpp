// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/TrackTable.h"

#include <algorithm>
#include <string_view>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/util/MultiMedia.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

constexpr std::size_t numberColumns = 3;
constexpr std::size_t timeColumns = 10;
constexpr std::size_t sizeColumns = 10;
constexpr std::size_t widestTable = 78;

std::string textUnder(const Dictionary& item, const char* key) {
    const std::string* const text = valueFor(item, key).asString();
    return text == nullptr ? std::string() : safeText(*text);
}

std::string row(std::string_view number, std::string_view name, std::string_view time,
                std::string_view size, std::size_t columns) {
    const std::size_t fixed = numberColumns + 2 + timeColumns + sizeColumns;
    const std::size_t nameColumns =
        std::max<std::size_t>(std::min(columns, widestTable), fixed) - fixed;
    return rightAligned(number, numberColumns) + "  " + leftAligned(name, nameColumns) +
           rightAligned(time, timeColumns) + rightAligned(size, sizeColumns);
}

std::string sumRow(const Compilation& compilation, std::size_t columns) {
    std::int64_t bytes = 0;
    for (const Dictionary& item : compilation.items)
        bytes += valueFor(item, kQuarnItemRealFileSizeKey).asInt64();
    const std::size_t count = compilation.items.size();
    const DiscTraits& disc = traitsOf(compilation.kind);
    const std::string name = counted(count, disc.oneItem) + disc.pauses(count);
    const bool countsTime = compilation.kind == DiscKind::Audio;
    return row("", name, countsTime ? disc.capacityText(compilation.used) : "",
               MultiMedia::stringWithFilesize(bytes), columns);
}

} // namespace

std::vector<std::string> trackList(const Compilation& compilation, std::size_t columns) {
    std::vector<std::string> lines;
    for (const Dictionary& item : compilation.items)
        lines.push_back(row(std::to_string(lines.size() + 1),
                            textUnder(item, kQuarnItemDisplayNameKey),
                            textUnder(item, kQuarnItemDurationKey),
                            textUnder(item, kQuarnItemFileSizeKey), columns));
    if (!lines.empty())
        lines.push_back(sumRow(compilation, columns));
    return lines;
}

} // namespace quarner::cli
