// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace quarner {

/// The header of one MPEG audio frame: 4 bytes.
struct MpegHeader {
    static constexpr std::size_t size = 4;

    std::uint32_t version = 0; ///< 1, 2, or 3 for 2.5
    std::uint32_t layer = 0;   ///< 1 to 3
    std::uint32_t rate = 0;    ///< samples per second
    std::uint32_t channels = 0;
    std::uint32_t bitRate = 0;    ///< kbit/s
    std::uint32_t frameBytes = 0; ///< the header included
    std::uint32_t samples = 0;    ///< of one channel in the frame

    /// True if the sound goes on in the same format.
    bool isLike(const MpegHeader& other) const {
        return version == other.version && layer == other.layer && rate == other.rate &&
               channels == other.channels;
    }
};

/// Reads a header. Nothing if the bytes are none, or if they leave the size of the frame open.
std::optional<MpegHeader> mpegHeader(std::span<const std::uint8_t> bytes);

} // namespace quarner
