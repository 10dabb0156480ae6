// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/CueSheet.h"

#include <array>
#include <cstdio>

#include "quarner/platform/DRMSF.h"

namespace quarner {
namespace {

/// "02:00:74"
std::string positionText(std::uint64_t sector) {
    const std::uint64_t second = sector / DRMSF::framesPerSecond;
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%02u:%02u:%02u", unsigned(second / 60),
                  unsigned(second % 60), unsigned(sector % DRMSF::framesPerSecond));
    return text.data();
}

std::string trackHead(std::size_t number) {
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "  TRACK %02u AUDIO\n", unsigned(number));
    return text.data();
}

} // namespace

std::string cueSheet(const DiscPlan& plan, std::string_view binName) {
    std::string sheet = "FILE \"" + std::string(binName) + "\" BINARY\n";
    std::uint64_t sector = 0;
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const TrackPlan& track = plan.tracks[i];
        sheet += trackHead(i + 1);
        if (track.preGap > 0)
            sheet += "    INDEX 00 " + positionText(sector) + '\n';
        sector += track.preGap;
        sheet += "    INDEX 01 " + positionText(sector) + '\n';
        sector += track.length;
    }
    return sheet;
}

std::optional<std::string> binNamedBy(std::string_view sheet) {
    constexpr std::string_view head = "FILE \"";
    const std::size_t start = sheet.find(head);
    if (start == std::string_view::npos)
        return std::nullopt;
    const std::string_view line = sheet.substr(start, sheet.find_first_of("\r\n", start) - start);
    const std::size_t end = line.rfind('"');
    if (end < head.size())
        return std::nullopt;
    return std::string(line.substr(head.size(), end - head.size()));
}

} // namespace quarner
