// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner::testing {

/// Where a track lies on a disc, in sectors from the start of the BIN.
struct TrackPlace {
    std::uint64_t start = 0; ///< of the sound
    std::uint64_t end = 0;   ///< behind the sound

    bool operator==(const TrackPlace&) const = default;
};

// What programs that were not written here read from a CUE sheet and its BIN. Each throws when the
// program fails.

/// The first sector of each track, and at last that of the lead-out.
std::vector<std::uint64_t> startsByCdInfo(const std::string& cue);
std::vector<TrackPlace> placesByCdrdao(const std::string& cue);
/// The sectors of each track, those before it included.
std::vector<std::uint64_t> sectorsByLibburn(const std::string& cue);
/// The sound of each track as bchunk extracts it.
std::vector<std::vector<std::int16_t>> soundByBchunk(const std::string& cue,
                                                     const std::string& bin);

} // namespace quarner::testing
