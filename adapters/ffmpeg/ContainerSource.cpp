// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/ContainerSource.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

#include "adapters/ffmpeg/Mp4Limits.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace quarner {

namespace {

/// Formats that hold their sound themselves, that files named .mp3 or .m4a have, and whose headers
/// cost libavformat little. Playlists and everything else that names further files or addresses
/// stay out.
constexpr std::array formats = {"mp3", "mov", "aac", "flac", "wav"};

constexpr std::uint64_t mostTables = 24U << 20;  // bytes of an MP4 file, and pictures
constexpr std::uint64_t mostHeader = 128U << 10; // bytes; libavformat takes long for many notes
constexpr std::uint64_t mostProbed = 8U << 20;   // bytes, in search of the codec
constexpr std::size_t smallestProbe = 4096;
constexpr std::size_t largestProbe = 1U << 20;
constexpr std::size_t skipNoteSize = 10; // two 32-bit counts and two reasons

std::string joinedFormats() {
    std::string list;
    for (const char* name : formats) {
        if (!list.empty())
            list += ',';
        list += name;
    }
    return list;
}

bool isRead(const AVInputFormat& format) {
    return std::any_of(formats.begin(), formats.end(), [&](const char* name) {
        return std::string_view(format.name).starts_with(name);
    });
}

/// The format of some bytes. A score of 1 is one chance match in the noise.
const AVInputFormat* probed(std::span<const std::uint8_t> bytes, int wantedScore) {
    std::vector<std::uint8_t> padded(bytes.begin(), bytes.end());
    padded.resize(bytes.size() + AVPROBE_PADDING_SIZE);
    AVProbeData data = {};
    data.filename = "";
    data.buf = padded.data();
    data.buf_size = static_cast<int>(bytes.size());
    int score = 0;
    const AVInputFormat* format = av_probe_input_format3(&data, 1, &score);
    return format != nullptr && score > wantedScore ? format : nullptr;
}

const AVInputFormat* formatAt(WindowedFile& file, std::uint64_t offset) {
    for (std::size_t size = smallestProbe;; size *= 2) {
        const auto bytes = file.view(offset, size);
        const bool isLast = bytes.size() < size || size >= largestProbe;
        const AVInputFormat* format = probed(bytes, isLast ? 1 : AVPROBE_SCORE_RETRY);
        if (format != nullptr || isLast)
            return format;
    }
}

} // namespace

std::string formatFound(WindowedFile& file, std::uint64_t offset) {
    const AVInputFormat* format = formatAt(file, offset);
    return format != nullptr ? format->name : "";
}

std::unique_ptr<ContainerSource> ContainerSource::open(WindowedFile& file) {
    std::unique_ptr<ContainerSource> source(new ContainerSource(file));
    return source->openInput() && source->findSound() ? std::move(source) : nullptr;
}

ContainerSource::ContainerSource(WindowedFile& file)
    : _file(file), _range(bytesBetweenTags(file)), _input(file) {}

ContainerSource::~ContainerSource() { avformat_close_input(&_format); }

/// Reads what is to be known before libavformat sees the file. False if it must not see it.
bool ContainerSource::prepare(const AVInputFormat& format) {
    const std::string_view name = format.name;
    if (!name.starts_with("mov")) {
        const bool isFlac = name == "flac";
        _input.present(_range,
                       isFlac ? notesAsPadding(_file, _range.begin) : std::vector<ReplacedByte>());
        _mostHeader = mostHeader;
        return true;
    }
    if (!hasBearableTables(_file, _range.begin))
        return false;
    _input.present({_range.begin, _file.size()}, {});
    _mostHeader = mostTables;
    _tables = _range.begin == 0 ? mp4TablesOf(_file) : std::nullopt;
    if (const auto window = _tables ? _tables->edited() : std::nullopt) {
        _heard = *window;
        _hasEdit = true;
    }
    return true;
}

bool ContainerSource::openInput() {
    const AVInputFormat* format = formatAt(_file, _range.begin);
    if (format == nullptr || !isRead(*format) || !prepare(*format))
        return false;
    _format = avformat_alloc_context();
    if (_format == nullptr || _input.context() == nullptr)
        return false;
    _format->pb = _input.context();
    _input.allow(_mostHeader);
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "", 0);
    av_dict_set(&options, "format_whitelist", joinedFormats().c_str(), 0);
    if (_hasEdit)
        av_dict_set(&options, "ignore_editlist", "1", 0);
    const int outcome = avformat_open_input(&_format, "", format, &options);
    av_dict_free(&options);
    return outcome == 0;
}

bool ContainerSource::isMp4() const {
    return std::string_view(_format->iformat->name).starts_with("mov");
}

bool ContainerSource::findSound() {
    for (unsigned i = 0; i < _format->nb_streams; ++i)
        if (_format->streams[i]->codecpar->codec_type != AVMEDIA_TYPE_AUDIO)
            _format->streams[i]->discard = AVDISCARD_ALL;
    // The tables of an MP4 file name the codec; other containers have to be searched for it.
    _input.allow(mostProbed);
    if (!isMp4() && avformat_find_stream_info(_format, nullptr) < 0)
        return false;
    const int best = av_find_best_stream(_format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (best < 0)
        return false;
    for (unsigned i = 0; i < _format->nb_streams; ++i)
        if (i != static_cast<unsigned>(best))
            _format->streams[i]->discard = AVDISCARD_ALL;
    _stream = _format->streams[best];
    return true;
}

PacketSource::Reading ContainerSource::read(Packet& packet) {
    _input.allow(mostDamage);
    do {
        av_packet_unref(packet.get());
        if (av_read_frame(_format, packet.get()) < 0) // damage up to the end is the end
            return _input.hasFailed() ? Reading::failure : Reading::end;
    } while (packet->stream_index != _stream->index);
    note(packet);
    return Reading::packet;
}

void ContainerSource::note(Packet& packet) {
    packet.timeBase = _stream->time_base;
    packet.rate = 0;
    packet.duration = std::clamp<std::int64_t>(packet->duration, 0, 1LL << 40);
    packet.cut = 0;
    packet.hasTail = _hasEdit;
    packet.isLost = false;
    if (!_hasEdit)
        noteTrimming(packet);
    const bool isDiscarded = !_hasEdit && (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
    packet.heardFrom = std::max<std::int64_t>(_heard.from - _position, 0);
    packet.heardUntil = isDiscarded ? 0
                        : _heard.until == Packet::open
                            ? Packet::open
                            : std::max<std::int64_t>(_heard.until - _position, 0);
    _position += packet.duration;
}

/// What libavformat says of the samples before and behind the sound.
void ContainerSource::noteTrimming(Packet& packet) {
    std::size_t size = 0;
    const std::uint8_t* note =
        av_packet_get_side_data(packet.get(), AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (note == nullptr || size < skipNoteSize)
        return;
    const std::int64_t skipped = AV_RL32(note);
    const AVRational sampleTime = {1, std::max(_stream->codecpar->sample_rate, 1)};
    if (skipped > 0)
        _heard.from =
            _position + (isMp4() ? skipped : av_rescale_q(skipped, sampleTime, packet.timeBase));
    packet.cut = AV_RL32(note + 4);
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
