// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DiscFormat.h"

namespace quarner {

/// One track on the disc, in sectors.
struct TrackPlan {
    /// Silence before the track, counted from sector 0 of the disc: the first track's leading gap
    /// is not included.
    std::uint32_t preGap = 0;
    std::uint32_t length = 0;
};

/// The layout of the disc to be written: every sector from sector 0 on, without gaps.
struct DiscPlan {
    std::uint32_t sectorSize = audioSectorSize;
    std::vector<TrackPlan> tracks;

    std::uint64_t sectors() const;
    std::uint64_t bytes() const { return sectors() * sectorSize; }
    /// Returns the number, from 1, of the track that a sector belongs to. A pre-gap belongs to the
    /// track after it.
    std::size_t trackAtSector(std::uint64_t sector) const;
};

/// Returns the plan of an audio disc. Throws `BurnFailure` if there is no track, if there are more
/// than `mostTracks`, or if a track is shorter than its samples.
DiscPlan planAudioDisc(const DRLayout& layout);

} // namespace quarner
