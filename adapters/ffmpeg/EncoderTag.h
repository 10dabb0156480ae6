// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace quarner {

/// What an encoder notes of an MPEG audio file in its first frame, which is not heard.
struct EncoderTag {
    std::uint64_t frames = 0;  ///< without the frame that holds the tag
    std::uint64_t bytes = 0;   ///< of all frames; 0: not noted
    std::uint32_t delay = 0;   ///< samples before the sound, the decoder's own delay included
    std::uint32_t padding = 0; ///< samples behind the sound, less the decoder's own delay
    bool isTrimmed = false;    ///< delay and padding are noted
    bool isCopy = false;       ///< of a program that copied frames from other files
    bool isCrcRight = false;   ///< the checksum of the note is there and right
};

/// Reads the note from the bytes of a file's first frame: the Xing, Info or VBRI tag. Nothing if
/// they are an ordinary frame.
std::optional<EncoderTag> encoderTagIn(std::span<const std::uint8_t> frame);

} // namespace quarner
