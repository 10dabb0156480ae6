// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "adapters/ffmpeg/AudioFile.h"
#include "adapters/ffmpeg/PacketTrim.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace quarner {

/// The sound of one file as the decoder hands it out, at the file's own rate, trimmed at both ends
/// as its packets say. A packet that cannot be decoded becomes silence of its own length.
class AudioDecoder {
public:
    /// A piece of sound: a range of a decoded frame (owned by the decoder, valid until the next
    /// call), or so many samples of silence, or the end.
    struct Piece {
        enum class Kind { sound, silence, end, failure };
        Kind kind = Kind::failure;
        const AVFrame* frame = nullptr;
        SampleRange range = {};
    };

    /// Opens a file; null when it holds no sound, or none that there is a decoder for.
    static std::unique_ptr<AudioDecoder> open(const std::string& path);

    ~AudioDecoder();
    AudioDecoder(const AudioDecoder&) = delete;
    AudioDecoder& operator=(const AudioDecoder&) = delete;

    /// Decodes on. `failure` when the file cannot be read any further.
    Piece next();

    /// Reads the rest of the file without decoding it. Answers false when it cannot be read to
    /// its end.
    bool skipToEnd();

    /// What the packets read so far say of their length: samples that are heard.
    std::uint64_t promisedSamples() const { return _promised; }
    /// False when a packet kept its length to itself, so that the promise is worth nothing.
    bool knowsLength() const { return !_file->hasUnknownDurations(); }

    std::uint32_t rate() const { return _file->rate(); }
    /// How the decoder lays out its samples, also before the first one is decoded.
    const AVCodecContext& layout() const { return *_codec; }

private:
    explicit AudioDecoder(std::unique_ptr<AudioFile> file);
    bool openCodec();
    bool advance();
    AudioFile::Reading readPacket();
    void sendPacket();
    std::uint64_t silenceForPacket();
    Piece sound();

    std::unique_ptr<AudioFile> _file;
    AVCodecContext* _codec = nullptr;
    AVFrame* _frame = nullptr;
    Packet _packet;
    PacketTrim _promiseTrim; // of what the packets say
    PacketTrim _soundTrim;   // of what they decode to
    std::uint64_t _promised = 0;
    std::uint64_t _decoded = 0; // samples that the current packet has given, heard or not
    bool _isDamaged = false;    // the current packet
    std::uint64_t _packets = 0; // sent to the decoder
};

} // namespace quarner
