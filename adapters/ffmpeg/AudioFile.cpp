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
    _isBareMpeg = isInputFormat("mp3") && _stream->codecpar->codec_id == AV_CODEC_ID_MP3;
    _hasUnknownDurations = !hasExactDurations(_stream->codecpar->codec_id);
    return foundRate > 0;
}

bool AudioFile::isInputFormat(std::string_view name) const {
    return std::string_view(_format->iformat->name).starts_with(name);
}

bool AudioFile::hasExactDurations(AVCodecID codec) const {
    constexpr std::array containers = {"mp3", "mov", "flac", "wav", "aiff"};
    constexpr std::array codecs = {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC, AV_CODEC_ID_ALAC,
                                   AV_CODEC_ID_FLAC};
    const bool isExact = std::find(codecs.begin(), codecs.end(), codec) != codecs.end() ||
                         av_get_exact_bits_per_sample(codec) > 0;
    return isExact && std::any_of(containers.begin(), containers.end(),
                                  [this](const char* name) { return isInputFormat(name); });
}

AudioFile::Reading AudioFile::read(Packet& packet) {
    if (packet.get() == nullptr || _next.get() == nullptr)
        return Reading::failure;
    const Reading reading = _isBareMpeg ? readFrame(packet) : readSound(packet);
    if (reading == Reading::packet)
        count(packet);
    return reading;
}

AudioFile::Reading AudioFile::readSound(Packet& packet) {
    do {
        av_packet_unref(packet.get());
        const int outcome = av_read_frame(_format, packet.get());
        if (outcome == AVERROR_EOF && _format->pb->error >= 0)
            return Reading::end;
        if (outcome < 0)
            return Reading::failure;
    } while (packet->stream_index != _stream->index);
    return Reading::packet;
}

AudioFile::Reading AudioFile::readFrame(Packet& packet) {
    if (_next->size > 0) {
        av_packet_unref(packet.get());
        av_packet_move_ref(packet.get(), _next.get());
        return Reading::packet;
    }
    for (;;) {
        const Reading reading = readSound(packet);
        if (reading != Reading::packet)
            return reading;
        const MpegFrames::Content content = _mpeg.classify(packet.bytes());
        if (content == MpegFrames::Content::damage)
            return readPastDamage(packet);
        if (content == MpegFrames::Content::frame)
            return reading;
    }
}

/// Damage counts only when sound follows: bytes after the last frame are none.
AudioFile::Reading AudioFile::readPastDamage(Packet& packet) {
    std::uint64_t frames = _mpeg.framesIn(packet.bytes());
    for (;;) {
        const Reading reading = readSound(_next);
        if (reading != Reading::packet)
            return reading;
        const MpegFrames::Content content = _mpeg.classify(_next.bytes());
        if (content == MpegFrames::Content::frame)
            break;
        if (content == MpegFrames::Content::damage)
            frames += _mpeg.framesIn(_next.bytes());
    }
    packet->duration *= static_cast<std::int64_t>(frames);
    return Reading::packet;
}

void AudioFile::count(Packet& packet) {
    const std::uint64_t start = samplesUntil(_ticks);
    _ticks += std::max<std::int64_t>(packet->duration, 0);
    packet.samples = samplesUntil(_ticks) - start;
    _hasUnknownDurations = _hasUnknownDurations || packet->duration <= 0;
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
