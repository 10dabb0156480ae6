// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "adapters/ffmpeg/MpegHeader.h"
#include "adapters/ffmpeg/MpegTags.h"

namespace quarner {

/// Finds the frames of a bare MPEG audio stream.
///
/// Frames follow each other without a gap. Where the next one does not begin at the end of the last
/// one, a tag is skipped; anything else is damage, and the next frame is searched byte by byte. A
/// frame that is found this way counts only if a frame of the same format, a tag or the end follows
/// it. The frames that were lost in the damage are counted by the space that they took on average,
/// so that the sound behind it keeps its place. Bytes before the first and after the last frame
/// are no sound.
class MpegFrames {
public:
    struct Frame {
        MpegHeader header;        ///< of the last frame, if this one is lost
        std::uint64_t offset = 0; ///< in the file
        std::uint64_t bytes = 0;  ///< fewer than in the header at the end of a cut file
        std::uint64_t lost = 0;   ///< the number of frames that cannot be found any more
        bool followsTag = false;
    };

    /// The range must lie within the file. The file must outlive this object.
    MpegFrames(WindowedFile& file, ByteRange range)
        : _file(file), _at(range.begin), _end(range.end) {}

    /// The next frame. Nothing at the end, or if `hasFailed`.
    std::optional<Frame> next();

    /// True after the file could not be read or there was more damage than is read through.
    bool hasFailed() const { return _hasFailed || _file.hasFailed(); }

    /// True after a frame had another format than the first one, was cut, or there was damage.
    bool isUnusual() const { return _isUnusual; }

    /// Where the next search begins.
    std::uint64_t offset() const { return _at; }
    void skipTo(std::uint64_t offset) { _at = offset; }

private:
    std::optional<MpegHeader> headerAt(std::uint64_t offset);
    bool isFollowed(std::uint64_t offset, const MpegHeader& header, bool bySameFormat);
    std::optional<MpegHeader> frameInPlace();
    std::optional<MpegHeader> frameInSearch(std::uint64_t offset);
    std::uint64_t tagAt(std::uint64_t offset);
    bool search();
    Frame take(const MpegHeader& header);
    Frame lostIn(std::uint64_t bytes);

    WindowedFile& _file;
    std::uint64_t _at;
    const std::uint64_t _end;
    std::optional<MpegHeader> _format; // of the last frame
    std::uint64_t _frames = 0;
    std::uint64_t _bytes = 0; // that they took
    bool _followsTag = false;
    bool _isUnusual = false;
    bool _hasFailed = false;
};

} // namespace quarner
