// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/AudioFile.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>

namespace quarner {

namespace {

/// Formats that hold their sound themselves. Playlists and everything else that names further
/// files or addresses stay out.
constexpr std::array formats = {"mp3", "mov", "aac", "flac", "ogg", "wav",      "w64", "aiff",
                                "au",  "caf", "ac3", "ape",  "asf", "matroska", "tta", "wv"};

std::string joined(const auto& names) {
    std::string list;
    for (const auto& name : names)
        list += (list.empty() ? "" : ",") + std::string(name);
    return list;
}

/// Opens a local file; further options by name. Owned by the caller; null when that fails.
AVFormatContext* openedFormat(const std::string& path,
                              const std::map<std::string, std::string>& further) {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", joined(formats).c_str(), 0);
    for (const auto& [name, value] : further)
        av_dict_set(&options, name.c_str(), value.c_str(), 0);
    AVFormatContext* format = nullptr;
    avformat_open_input(&format, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    return format;
}

/// How long a stream is before its container's edit list is applied, in its time base.
std::int64_t uneditedDuration(const std::string& path, int stream) {
    AVFormatContext* format = openedFormat(path, {{"ignore_editlist", "1"}});
    if (format == nullptr)
        return AV_NOPTS_VALUE;
    const bool isThere = static_cast<unsigned>(stream) < format->nb_streams;
    const std::int64_t duration = isThere ? format->streams[stream]->duration : AV_NOPTS_VALUE;
    avformat_close_input(&format);
    return duration;
}

} // namespace

std::unique_ptr<AudioFile> AudioFile::open(const std::string& path) {
    std::unique_ptr<AudioFile> file(new AudioFile(path));
    if (!file->openInput() || !file->findSound())
        return nullptr;
    return file;
}

AudioFile::~AudioFile() { avformat_close_input(&_format); }

bool AudioFile::openInput() {
    _format = openedFormat(_path, {});
    // A score of 1 is an extension without a content, or one chance match in the noise.
    return _format != nullptr && _format->probe_score > 1;
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
    if (isInputFormat("mov"))
        _unedited = uneditedDuration(_path, best);
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

std::vector<std::string> audioFileExtensions() {
    std::vector<std::string> extensions;
    for (const char* name : formats) {
        const AVInputFormat* format = av_find_input_format(name);
        std::istringstream list(format && format->extensions ? format->extensions : "");
        for (std::string extension; std::getline(list, extension, ',');)
            extensions.push_back(extension);
        if (format && !format->extensions)
            extensions.emplace_back(name);
    }
    std::sort(extensions.begin(), extensions.end());
    extensions.erase(std::unique(extensions.begin(), extensions.end()), extensions.end());
    return extensions;
}

} // namespace quarner
