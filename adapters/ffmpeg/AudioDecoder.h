// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "adapters/ffmpeg/PacketSource.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace quarner {

/// The sound of one file as the decoder emits it, at the file's own rate, trimmed at both ends as
/// its packets say. A packet that cannot be decoded becomes silence of its own length; the first
/// one is dropped instead, since it only prepares the decoder in many files.
class AudioDecoder {
public:
    /// A chunk of sound: a range of a decoded frame (owned by the decoder, valid until the next
    /// call), or `range.count` samples of silence at a rate, or the end.
    struct Chunk {
        enum class Kind { sound, silence, end, failure };
        Kind kind = Kind::failure;
        const AVFrame* frame = nullptr;
        SampleRange range = {};
        std::uint32_t rate = 0;
        /// Samples of the frame behind the range that are not heard, but that a filter may use.
        std::uint64_t tail = 0;
        bool isJoin = false; ///< the first sound of another rate; to be resampled on its own
    };

    /// Opens a decoder; null if there is none for the sound.
    static std::unique_ptr<AudioDecoder> open(std::unique_ptr<PacketSource> source);

    ~AudioDecoder();
    AudioDecoder(const AudioDecoder&) = delete;
    AudioDecoder& operator=(const AudioDecoder&) = delete;

    /// Decodes the next chunk. Returns `failure` if the file cannot be read any further.
    Chunk next();

    /// The decoder's sample format, also before the first frame is decoded.
    const AVCodecContext& layout() const { return *_codec; }

    /// How many packets have been decoded to nothing so far, and how many samples the last packet
    /// gave that is complete, heard or not.
    std::uint64_t emptyPackets() const { return _emptyPackets; }
    /// Samples at the start that some encoders put there to prepare the decoder, as the decoder
    /// recognises them; they are not heard.
    std::uint64_t priming() const { return _priming; }
    std::uint64_t decodedOfPacket() const { return _decoded; }

private:
    explicit AudioDecoder(std::unique_ptr<PacketSource> source);
    bool openCodec();
    bool advance();
    void sendPacket();
    Chunk silenceForPacket();
    Chunk sound();
    std::int64_t inSamples(std::int64_t ticks) const;
    void notePriming();
    SampleRange heard(std::uint64_t samples) const;

    const std::unique_ptr<PacketSource> _source;
    AVCodecContext* _codec = nullptr;
    AVFrame* _frame = nullptr;
    Packet _packet;
    std::uint32_t _rate = 0;    // of the current packet
    std::uint64_t _decoded = 0; // samples decoded from the current packet, trimmed ones included
    bool _isDamaged = false;    // the current packet
    bool _isPending = false;    // the current packet may still have to be replaced by silence
    std::uint64_t _packets = 0; // read so far
    std::uint64_t _emptyPackets = 0;
    std::uint64_t _priming = 0;
    std::uint64_t _primingLeft = 0; // of it, in samples still to be decoded
};

} // namespace quarner
