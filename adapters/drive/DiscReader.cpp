// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DiscReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/Libburn.h"
#include "adapters/engine/DiscPlan.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

struct SpeedsRelease {
    void operator()(burn::burn_speed_descriptor* list) const {
        burn::burn_drive_free_speedlist(&list);
    }
};

DiscFacts::State stateOf(burn::burn_drive* drive) {
    switch (burn::burn_disc_get_status(drive)) {
    case burn::BURN_DISC_BLANK:
        return DiscFacts::State::Blank;
    case burn::BURN_DISC_APPENDABLE:
        return DiscFacts::State::Appendable;
    case burn::BURN_DISC_FULL:
        return DiscFacts::State::Closed;
    case burn::BURN_DISC_UNSUITABLE:
        return DiscFacts::State::Unsuitable;
    case burn::BURN_DISC_EMPTY:
        return DiscFacts::State::None;
    default:
        return DiscFacts::State::NotReady;
    }
}

/// The profiles of MMC-5, table 89.
const char* typeOf(int profile) {
    switch (profile) {
    case 0x08:
        return DRDeviceMediaTypeCDROM;
    case 0x09:
        return DRDeviceMediaTypeCDR;
    case 0x0a:
        return DRDeviceMediaTypeCDRW;
    case 0x10:
        return DRDeviceMediaTypeDVDROM;
    case 0x11:
    case 0x15:
    case 0x16:
    case 0x1b:
    case 0x2b:
        return DRDeviceMediaTypeDVDR;
    case 0x12:
    case 0x13:
    case 0x14:
    case 0x17:
    case 0x1a:
    case 0x2a:
        return DRDeviceMediaTypeDVDRW;
    case 0x40:
    case 0x41:
    case 0x42:
    case 0x43:
        return DRDeviceMediaTypeBD;
    default:
        return DRDeviceMediaTypeUnknown;
    }
}

/// DVD-RAM, restricted overwrite DVD-RW, DVD+RW, BD-RE.
bool isOverwritable(int profile) {
    constexpr std::array profiles = {0x12, 0x13, 0x1a, 0x2a, 0x43};
    return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
}

bool isCD(int profile) { return profile >= 0x08 && profile <= 0x0a; }

std::uint64_t blocks(std::int64_t count) { return std::uint64_t(std::max<std::int64_t>(0, count)); }

/// Returns the start of the last session's lead-out.
std::uint64_t endOfLastSession(burn::burn_drive* drive) {
    const BurnDisc disc(burn::burn_drive_get_disc(drive));
    int sessions = 0;
    burn::burn_session** const list =
        disc ? burn::burn_disc_get_sessions(disc.get(), &sessions) : nullptr;
    if (!list || sessions < 1)
        return 0;
    burn::burn_toc_entry entry = {};
    burn::burn_session_get_leadout_entry(list[sessions - 1], &entry);
    return blocks(startOf(entry));
}

std::uint64_t readableBlocks(burn::burn_drive* drive) {
    int capacity = 0;
    return burn::burn_get_read_capacity(drive, &capacity, 0) == 1 ? blocks(capacity) : 0;
}

std::uint64_t usedBlocks(burn::burn_drive* drive, DiscFacts::State state, int profile) {
    if (state == DiscFacts::State::Appendable) {
        int start = 0;
        int next = 0;
        if (burn::burn_disc_track_lba_nwa(drive, nullptr, 0, &start, &next) == 1)
            return blocks(next);
    }
    if (state != DiscFacts::State::Closed && state != DiscFacts::State::Appendable)
        return 0;
    const std::uint64_t end = isCD(profile) ? endOfLastSession(drive) : 0;
    return end > 0 ? end : readableBlocks(drive);
}

/// Returns the capacity of the disc in sectors, as recorded in the ATIP; 0 if the drive does not
/// report it.
std::uint64_t capacityOf(burn::burn_drive* drive) {
    int start = 0;
    int end = 0;
    if (burn::burn_disc_read_atip(drive) != 1 ||
        burn::burn_drive_get_start_end_lba(drive, &start, &end, 0) != 1)
        return 0;
    return blocks(end);
}

std::uint64_t freeBlocks(burn::burn_drive* drive, const DiscFacts& facts) {
    const bool takesMore =
        facts.state == DiscFacts::State::Blank || facts.state == DiscFacts::State::Appendable;
    // The library counts 2048 bytes per block, whatever is written.
    const std::uint64_t available =
        takesMore ? blocks(burn::burn_disc_available_space(drive, nullptr) / dataBlockSize) : 0;
    if (!facts.isErasable || facts.state == DiscFacts::State::Blank)
        return available;
    return std::max(available, capacityOf(drive));
}

std::vector<std::int64_t> speedsOf(burn::burn_drive* drive, int profile) {
    burn::burn_speed_descriptor* list = nullptr;
    burn::burn_drive_get_speedlist(drive, &list);
    const std::unique_ptr<burn::burn_speed_descriptor, SpeedsRelease> owner(list);
    const double bytes = isCD(profile) ? audioSectorSize : dataBlockSize;
    std::vector<std::int64_t> speeds;
    for (; list != nullptr; list = list->next)
        if (list->write_speed > 0)
            speeds.push_back(std::llround(list->write_speed * 1000.0 / bytes));
    std::sort(speeds.begin(), speeds.end());
    speeds.erase(std::unique(speeds.begin(), speeds.end()), speeds.end());
    return speeds;
}

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

DiscFacts readDiscFacts(const GrabbedDrive& grabbed) {
    burn::burn_drive* const drive = grabbed.handle();
    DiscFacts facts;
    facts.state = stateOf(drive);
    if (!facts.isPresent())
        return facts;
    const int profile = profileOf(drive);
    facts.type = typeOf(profile);
    facts.isErasable = burn::burn_disc_erasable(drive) != 0;
    facts.isOverwritable = isOverwritable(profile);
    facts.usedBlocks = usedBlocks(drive, facts.state, profile);
    facts.freeBlocks = freeBlocks(drive, facts);
    facts.speeds = speedsOf(drive, profile);
    return facts;
}

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
