// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quarner {

/// What an encoder notes, in the frame before the first one that is heard, of an MPEG audio file.
struct EncoderTag {
    std::uint64_t frames = 0;  ///< without the one that holds the note
    std::uint32_t delay = 0;   ///< samples put before the sound
    std::uint32_t padding = 0; ///< samples put after it
};

/// Reads the note from the bytes before the first frame that is heard; nothing without one.
std::optional<EncoderTag> encoderTagIn(std::string_view bytes);

/// The same for a file whose first frame to be heard begins at an offset in bytes.
std::optional<EncoderTag> encoderTagOf(const std::string& path, std::int64_t firstFrame);

} // namespace quarner
