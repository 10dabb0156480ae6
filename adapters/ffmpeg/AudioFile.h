// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

#include "adapters/ffmpeg/MpegFrames.h"
#include "adapters/ffmpeg/Packet.h"

namespace quarner {

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
    explicit AudioFile(std::string path) : _path(std::move(path)) {}
    bool openInput();
    bool findSound();
    bool isInputFormat(std::string_view name) const;
    bool hasExactDurations(AVCodecID codec) const;
    Reading readSound(Packet& packet);
    Reading readFrame(Packet& packet);
    Reading readPastDamage(Packet& packet);
    void count(Packet& packet);
    void correctEdit(Packet& packet);
    std::int64_t editError(const AVPacket& first) const;
    void notePadding();
    std::uint64_t paddingWithin(SampleRange range) const;
    std::uint64_t samplesUntil(std::int64_t ticks) const;

    const std::string _path;
    AVFormatContext* _format = nullptr;
    AVStream* _stream = nullptr;
    int _skipScale = 1;
    bool _hasUnknownDurations = false;
    std::uint64_t _packets = 0;              // read so far
    std::int64_t _ticks = 0;                 // that they take, in the stream's time base
    std::int64_t _unedited = AV_NOPTS_VALUE; // ticks of the whole stream, its edit list left out
    std::int64_t _editError = 0;
    std::int64_t _firstPosition = -1; // in the file, of the first packet
    bool _isBareMpeg = false;
    MpegFrames _mpeg;
    Packet _next;                        // read ahead, behind damage
    std::optional<SampleRange> _padding; // noted by the encoder; known once damage was found
};

/// The file-name extensions of the formats that are read.
std::vector<std::string> audioFileExtensions();

} // namespace quarner
