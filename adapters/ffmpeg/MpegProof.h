// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <span>

#include "adapters/ffmpeg/MpegHeader.h"
#include "adapters/ffmpeg/MpegTags.h"

namespace quarner {

/// Checks what an encoder's tag says of a bare MPEG audio stream at a few places of the stream.
///
/// A tag with the right checksum may stand before frames that it does not know: programs that copy
/// frames write one for whatever they copied. So the last frame and frames at eight places between
/// the ends must have the format of the first one, and the number of frames must fit the bytes:
/// exactly where the bit rate is constant, by a factor of two where it is not. Reads less than
/// 40 KiB.
class MpegProof {
public:
    /// `frames` are the bytes of all frames but the one with the tag, `format` is the format that
    /// they should have. The file must outlive this object.
    MpegProof(WindowedFile& file, ByteRange frames, const MpegHeader& format)
        : _file(file), _range(frames), _format(format) {}

    /// True if the stream can have this number of frames, all of one format. Call it once.
    bool fits(std::uint64_t frames);

private:
    /// Frames that follow each other.
    struct Run {
        std::uint64_t frames = 0;
        std::size_t end = 0; ///< where the last one ends
    };

    bool hasFramesAt(std::uint64_t offset);
    bool endsWithFrame();
    Run runAt(std::span<const std::uint8_t> bytes, std::size_t start) const;
    void note(std::span<const std::uint8_t> bytes, std::size_t start);

    WindowedFile& _file;
    const ByteRange _range;
    const MpegHeader _format;
    std::uint64_t _seenFrames = 0;
    std::uint64_t _seenBytes = 0;    // that they take
    std::uint32_t _bitRate = 0;      // of the frames seen
    bool _hasConstantBitRate = true; // of the frames seen
};

} // namespace quarner
