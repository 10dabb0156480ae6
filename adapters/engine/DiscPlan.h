// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "quarner/platform/DRBurn.h"

namespace quarner {

/// Bytes in a sector of an audio track: 588 stereo samples of 16 bits (Red Book).
inline constexpr std::uint32_t audioSectorSize = 2352;
/// Bytes in a block of a data track: the user data of a mode 1 sector (ECMA-130).
inline constexpr std::uint32_t dataBlockSize = 2048;
/// The part of the first track's pre-gap that lies before sector 0 of the disc: every drive makes
/// it, and no image holds it (Red Book: two seconds).
inline constexpr std::uint32_t leadingGapSectors = 150;

/// One track as it lies on the disc, in sectors.
struct TrackPlan {
    /// Silence before the track, from sector 0 of the disc on: the first track's leading gap is
    /// not counted.
    std::uint32_t preGap = 0;
    std::uint32_t length = 0;
};

/// What is going to be written: every sector of the disc from sector 0 on, without holes.
struct DiscPlan {
    std::uint32_t sectorSize = audioSectorSize;
    std::vector<TrackPlan> tracks;

    std::uint64_t sectors() const;
    std::uint64_t bytes() const { return sectors() * sectorSize; }
    /// The track, from 1, that a sector of the disc belongs to (with its pre-gap).
    std::size_t trackAtSector(std::uint64_t sector) const;
};

/// The plan of an audio disc. Throws `BurnFailure` when nothing, or more than 99 tracks, or a track
/// that is shorter than its own samples is to be written.
DiscPlan planAudioDisc(const DRLayout& layout);

} // namespace quarner
