// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/AudioFile.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace quarner {

namespace {

/// Formats that hold their sound themselves. Playlists and everything else that names further
/// files or addresses stay out.
constexpr std::array formats = {"mp3", "mov", "aac", "flac", "ogg", "wav",      "w64", "aiff",
                                "au",  "caf", "ac3", "ape",  "asf", "matroska", "tta", "wv"};

std::string joined(const auto& names) {
    std::string list;
    for (const std::string name : names)
        list += (list.empty() ? "" : ",") + name;
    return list;
}

} // namespace

std::unique_ptr<AudioFile> AudioFile::open(const std::string& path) {
    std::unique_ptr<AudioFile> file(new AudioFile);
    if (!file->openInput(path) || !file->findSound())
        return nullptr;
    return file;
}

AudioFile::~AudioFile() { avformat_close_input(&_format); }

bool AudioFile::openInput(const std::string& path) {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", joined(formats).c_str(), 0);
    const int opened = avformat_open_input(&_format, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    // A score of 1 is an extension without a content, or one chance match in the noise.
    return opened == 0 && _format->probe_score > 1;
}

bool AudioFile::findSound() {
    std::vector<int> namedRates;
    for (unsigned i = 0; i < _format->nb_streams; ++i) {
        AVStream& stream = *_format->streams[i];
        namedRates.push_back(stream.codecpar->sample_rate);
        if (stream.codecpar->codec_type != AVMEDIA_TYPE_AUDIO)
            stream.discard = AVDISCARD_ALL;
    }
    if (avformat_find_stream_info(_format, nullptr) < 0)
        return false;
    const int best = av_find_best_stream(_format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (best < 0)
        return false;
    for (unsigned i = 0; i < _format->nb_streams; ++i)
        if (i != static_cast<unsigned>(best))
            _format->streams[i]->discard = AVDISCARD_ALL;
    _stream = _format->streams[best];
    const int foundRate = _stream->codecpar->sample_rate;
    const auto index = static_cast<std::size_t>(best);
    if (index < namedRates.size() && namedRates[index] > 0)
        _skipScale = std::max(1, foundRate / namedRates[index]);
    return foundRate > 0;
}

AudioFile::Reading AudioFile::read(Packet& packet) {
    if (packet.get() == nullptr)
        return Reading::failure;
    do {
        av_packet_unref(packet.get());
        const int outcome = av_read_frame(_format, packet.get());
        if (outcome == AVERROR_EOF && _format->pb->error >= 0)
            return Reading::end;
        if (outcome < 0)
            return Reading::failure;
    } while (packet->stream_index != _stream->index);
    const std::uint64_t start = samplesUntil(_ticks);
    _ticks += std::max<std::int64_t>(packet->duration, 0);
    packet.samples = samplesUntil(_ticks) - start;
    _hasUnknownDurations = _hasUnknownDurations || packet->duration <= 0;
    return Reading::packet;
}

std::uint64_t AudioFile::samplesUntil(std::int64_t ticks) const {
    const AVRational rateBase = {1, static_cast<int>(rate())};
    return static_cast<std::uint64_t>(av_rescale_q(ticks, _stream->time_base, rateBase));
}

std::vector<std::string> audioFileExtensions() {
    std::vector<std::string> extensions;
    for (const char* name : formats) {
        const AVInputFormat* format = av_find_input_format(name);
        std::istringstream list(format && format->extensions ? format->extensions : "");
        for (std::string extension; std::getline(list, extension, ',');)
            extensions.push_back(extension);
    }
    std::sort(extensions.begin(), extensions.end());
    extensions.erase(std::unique(extensions.begin(), extensions.end()), extensions.end());
    return extensions;
}

} // namespace quarner
