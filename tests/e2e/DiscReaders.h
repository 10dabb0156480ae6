// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner::testing {

/// The position of a track on a disc, in sectors from the start of the BIN.
struct TrackPlace {
    std::uint64_t start = 0; ///< the first sector of the sound
    std::uint64_t end = 0;   ///< the sector after the sound

    bool operator==(const TrackPlace&) const = default;
};

// What independent programs read from a CUE sheet and its BIN. Each function throws if the program
// fails.

/// The first sector of each track and of the lead-out.
std::vector<std::uint64_t> startsByCdInfo(const std::string& cue);
std::vector<TrackPlace> placesByCdrdao(const std::string& cue);
/// The sectors of each track, including those before it.
std::vector<std::uint64_t> sectorsByLibburn(const std::string& cue);
/// The sound of each track as bchunk extracts it.
std::vector<std::vector<std::int16_t>> soundByBchunk(const std::string& cue,
                                                     const std::string& bin);

} // namespace quarner::testing
