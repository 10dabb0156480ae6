// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/ffmpeg/FileInput.h"
#include "adapters/ffmpeg/Mp4Tables.h"
#include "adapters/ffmpeg/PacketSource.h"

extern "C" {
#include <libavformat/avformat.h>
}

namespace quarner {

/// The best audio stream of a file in a container, read through libavformat.
///
/// In an MP4 file the edit list is obeyed here: libavformat is told to ignore it, and the samples
/// outside of it are not heard. Where there is no edit list, the delay that a note of the encoder
/// names is not heard; it counts in ticks of the track. More than one cut is left to libavformat,
/// and the length is then found by decoding.
class ContainerSource : public PacketSource {
public:
    /// Opens the best audio stream of a file. Null if there is none. The file must outlive the
    /// result.
    static std::unique_ptr<ContainerSource> open(WindowedFile& file);
    ~ContainerSource() override;

    Reading read(Packet& packet) override;
    const AVCodecParameters& parameters() const override { return *_stream->codecpar; }

    /// The tables of an MP4 file.
    const std::optional<Mp4Tables>& tables() const { return _tables; }

    /// What the file says about itself; null if nothing. Valid as long as the source.
    const AVDictionary* notes() const { return _format->metadata; }

    /// The part that remains after trimming, in ticks of the tables.
    Mp4Tables::Window heard() const { return _heard; }

private:
    explicit ContainerSource(WindowedFile& file);
    bool prepare(const AVInputFormat& format);
    bool openInput();
    bool findSound();
    bool isMp4() const;
    void note(Packet& packet);
    void noteTrimming(Packet& packet);

    WindowedFile& _file;
    const ByteRange _range; // without text tags
    FileInput _input;
    AVFormatContext* _format = nullptr;
    AVStream* _stream = nullptr;
    std::optional<Mp4Tables> _tables;
    std::uint64_t _mostHeader = 0; // bytes
    bool _hasEdit = false;
    Mp4Tables::Window _heard = {0, Packet::open};
    std::int64_t _position = 0; // ticks before the next packet
};

/// The name of the format that libavformat finds in the bytes of a file, from an offset on. Empty
/// if none.
std::string formatFound(WindowedFile& file, std::uint64_t offset);

/// The file-name extensions of the formats that are read.
std::vector<std::string> audioFileExtensions();

} // namespace quarner
