// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/TocCheck.h"

#include <algorithm>
#include <vector>

#include "adapters/optical/Libburn.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

/// A line of the table: where something begins, in sectors, and whether it is data.
struct Line {
    std::int64_t start;
    bool isData;

    std::string text() const { return (isData ? "data at " : "sound at ") + std::to_string(start); }
    bool operator==(const Line&) const = default;
};

Line lineOf(const burn::burn_toc_entry& entry) {
    constexpr unsigned dataBit = 4; // of the control field of sub-channel Q (Red Book)
    return {startOf(entry), (entry.control & dataBit) != 0};
}

std::vector<Line> plannedLines(const DiscPlan& plan) {
    const bool isData = plan.sectorSize == dataBlockSize;
    std::vector<Line> lines;
    std::int64_t end = 0;
    for (const TrackPlan& track : plan.tracks) {
        lines.push_back({end + track.preGap, isData});
        end += std::int64_t(track.preGap) + std::max(track.length, DRTrack::minimumSectors);
    }
    lines.push_back({end, isData});
    return lines;
}

std::vector<Line> writtenLines(burn::burn_session* session) {
    std::vector<Line> lines;
    int count = 0;
    burn::burn_track** const tracks = burn::burn_session_get_tracks(session, &count);
    burn::burn_toc_entry entry = {};
    for (int i = 0; i < count; ++i) {
        burn::burn_track_get_entry(tracks[i], &entry);
        lines.push_back(lineOf(entry));
    }
    burn::burn_session_get_leadout_entry(session, &entry);
    lines.push_back(lineOf(entry));
    if (count > 0) // what the lead-out itself is matters to nobody
        lines.back().isData = lines.front().isData;
    return lines;
}

std::string difference(const std::vector<Line>& written, const std::vector<Line>& planned) {
    if (written.size() != planned.size())
        return std::to_string(written.size() - 1) + " tracks instead of " +
               std::to_string(planned.size() - 1);
    for (std::size_t i = 0; i < planned.size(); ++i)
        if (written[i] != planned[i])
            return (i + 1 == planned.size() ? "the end: "
                                            : "track " + std::to_string(i + 1) + ": ") +
                   written[i].text() + " instead of " + planned[i].text();
    return {};
}

} // namespace

std::string differenceFromPlan(const GrabbedDrive& grabbed, const DiscPlan& plan) {
    burn::burn_drive* const drive = grabbed.handle();
    burn::burn_drive_re_assess(drive, 0);
    const BurnDisc disc(burn::burn_drive_get_disc(drive));
    int sessions = 0;
    burn::burn_session** const list =
        disc ? burn::burn_disc_get_sessions(disc.get(), &sessions) : nullptr;
    if (!list || sessions != 1)
        return std::to_string(sessions) + " sessions instead of one";
    return difference(writtenLines(list[0]), plannedLines(plan));
}

} // namespace quarner
