// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarner {

/// Bytes in a sector of an audio track: 588 stereo samples of 16 bits (Red Book).
inline constexpr std::uint32_t audioSectorSize = 2352;
/// Bytes in a block of a data track: the user data of a mode 1 sector (ECMA-130).
inline constexpr std::uint32_t dataBlockSize = 2048;
/// The part of the first track's pre-gap that lies before sector 0 of the disc. The drive writes
/// it, and an image does not contain it (Red Book: two seconds).
inline constexpr std::uint32_t leadingGapSectors = 150;
/// The most tracks that an audio disc can have (Red Book).
inline constexpr std::size_t mostTracks = 99;

} // namespace quarner
