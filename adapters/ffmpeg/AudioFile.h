// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

#include "adapters/ffmpeg/MpegFrames.h"

namespace quarner {

/// One packet of sound, as FFmpeg hands it out; reused from read to read.
class Packet {
public:
    Packet() : _packet(av_packet_alloc()) {}
    ~Packet() { av_packet_free(&_packet); }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    /// Owned by this object; null when there was no memory for it.
    AVPacket* get() const { return _packet; }
    AVPacket* operator->() const { return _packet; }

    std::span<const std::uint8_t> bytes() const {
        return {_packet->data, static_cast<std::size_t>(_packet->size)};
    }

    /// The samples that the packet takes at the file's rate, those that are not heard included.
    std::uint64_t samples = 0;

private:
    AVPacket* _packet;
};

/// The compressed sound of one local file: its best audio stream, packet by packet. Not for use on
/// two threads at once; each file on its own thread is fine.
class AudioFile {
public:
    enum class Reading { packet, end, failure };

    /// Opens a file and finds its sound; null when there is none.
    static std::unique_ptr<AudioFile> open(const std::string& path);

    ~AudioFile();
    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;

    /// Reads the next packet of sound: `failure` when the file cannot be read any further. A
    /// packet may be damaged.
    Reading read(Packet& packet);

    const AVStream& stream() const { return *_stream; }
    std::uint32_t rate() const {
        return static_cast<std::uint32_t>(_stream->codecpar->sample_rate);
    }

    /// The file's rate over the rate in which its container counts the samples to skip: 2 where
    /// the codec doubles the rate that the container names.
    int skipScale() const { return _skipScale; }

    /// True when the container is not known for exact durations, or a packet said nothing of its
    /// own: then only decoding tells the length.
    bool hasUnknownDurations() const { return _hasUnknownDurations; }

private:
    AudioFile() = default;
    bool openInput(const std::string& path);
    bool findSound();
    bool isInputFormat(std::string_view name) const;
    bool hasExactDurations(AVCodecID codec) const;
    Reading readSound(Packet& packet);
    Reading readFrame(Packet& packet);
    Reading readPastDamage(Packet& packet);
    void count(Packet& packet);
    std::uint64_t samplesUntil(std::int64_t ticks) const;

    AVFormatContext* _format = nullptr;
    AVStream* _stream = nullptr;
    int _skipScale = 1;
    bool _isBareMpeg = false;
    MpegFrames _mpeg;
    Packet _next;            // read ahead, behind damage
    std::int64_t _ticks = 0; // in the stream's time base, of the packets read so far
    bool _hasUnknownDurations = false;
};

/// The file-name extensions of the formats that are read.
std::vector<std::string> audioFileExtensions();

} // namespace quarner
