// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <span>

namespace quarner {

/// Tells sound from the rest in the packets of a bare MPEG audio stream. Where frame headers are
/// destroyed, FFmpeg makes one packet of everything up to the end of the next whole frame and
/// counts it as one frame; the frames lost in it are recognised by the space that they took.
class MpegFrames {
public:
    enum class Content {
        frame,  ///< one frame of sound
        tag,    ///< a text tag, and what clings to it: no sound
        damage, ///< frames that cannot be found any more, or bytes after the last one
    };

    /// Looks at the next packet of the stream.
    Content classify(std::span<const std::uint8_t> packet);

    /// How many frames of the usual size so much damage stands for: at least one.
    std::uint64_t framesIn(std::span<const std::uint8_t> damage) const;

private:
    std::uint64_t _frames = 0; // seen so far
    std::uint64_t _bytes = 0;  // that they took
};

} // namespace quarner
