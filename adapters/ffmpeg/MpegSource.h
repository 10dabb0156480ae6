// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>

#include "adapters/ffmpeg/EncoderTag.h"
#include "adapters/ffmpeg/MpegFrames.h"
#include "adapters/ffmpeg/PacketSource.h"

namespace quarner {

/// The length of a file's sound at its own rate.
struct SoundLength {
    std::uint64_t samples = 0;
    std::uint32_t rate = 0;
};

/// A bare MPEG audio stream: an MP3 file, tags before and behind it included.
///
/// A frame with an encoder's tag at the start is not heard, nor are the delay and the padding that
/// it notes. Padding is counted from the start of the file in frames, as the tag does, so damage
/// before it does not move it. A tag in the middle, where files were joined, is an ordinary frame.
class MpegSource : public PacketSource {
public:
    /// The file must outlive this object.
    explicit MpegSource(WindowedFile& file);
    ~MpegSource() override;

    Reading read(Packet& packet) override;
    const AVCodecParameters& parameters() const override { return *_parameters; }

    /// True if the file begins with what can only be an MPEG audio stream.
    bool isCertain();

    /// The length if the header proves it: the checksum of the encoder's tag is right, its number
    /// of bytes is the number that the file holds between its other tags, its number of frames can
    /// be right, and all frames seem to have one format (`MpegProof`). Nothing otherwise, and for
    /// the tag of a program that copied the frames of other files.
    std::optional<SoundLength> provenLength();

    /// The length as the headers of all frames tell it, read from here to the end. Nothing if
    /// anything is unusual, or the file cannot be read.
    std::optional<SoundLength> scannedLength();

private:
    struct Span {
        std::int64_t from = 0;
        std::int64_t until = 0;
    };

    void readTag();
    std::optional<MpegFrames::Frame> nextFrame();
    bool isEncoderTag(const MpegFrames::Frame& frame);
    Span place(const MpegFrames::Frame& frame);
    bool fill(Packet& packet, const MpegFrames::Frame& frame);

    WindowedFile& _file;
    const ByteRange _range;
    AVCodecParameters* _parameters;
    std::optional<EncoderTag> _tag;
    std::optional<MpegHeader> _first; // of the frame with the tag, or the first one instead
    MpegFrames _frames;
    std::int64_t _position = 0; // samples before the next frame
    Span _padding;              // in samples from the first frame on
};

} // namespace quarner
