// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <cstdlib>

#include "adapters/ffmpeg/AudioFile.h"
#include "adapters/ffmpeg/EncoderTag.h"

namespace quarner {

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
    notePadding();
    packet->duration *= static_cast<std::int64_t>(frames);
    return Reading::packet;
}

void AudioFile::count(Packet& packet) {
    if (_packets++ == 0) {
        _firstPosition = packet->pos;
        _editError = editError(*packet.get());
    }
    correctEdit(packet);
    const std::uint64_t start = samplesUntil(_ticks);
    _ticks += std::max<std::int64_t>(packet->duration, 0);
    packet.samples = samplesUntil(_ticks) - start;
    packet.unheard = _padding ? paddingWithin({start, packet.samples}) : 0;
    _hasUnknownDurations = _hasUnknownDurations || packet->duration <= 0;
}

/// Many programs write edit lists in milliseconds. FFmpeg cuts the last packet to that, although
/// the container knows its length to the sample. The difference in ticks, by which the edit list
/// is short of the real end; 0 where the edit list means what it says.
std::int64_t AudioFile::editError(const AVPacket& first) const {
    if (_unedited == AV_NOPTS_VALUE || first.dts == AV_NOPTS_VALUE || first.dts > 0)
        return 0;
    const std::int64_t coarsest = _stream->time_base.den / (600 * _stream->time_base.num) + 1;
    const std::int64_t error = _unedited + first.dts - _stream->duration;
    const bool endsInWholePacket = first.duration > 0 && _unedited % first.duration == 0;
    return std::abs(error) > coarsest || (endsInWholePacket && error > 0) ? 0 : error;
}

void AudioFile::correctEdit(Packet& packet) {
    if (_editError != 0 && packet->dts + packet->duration == _stream->duration)
        packet->duration = std::max<std::int64_t>(packet->duration + _editError, 0);
}

/// FFmpeg looks for the padding where it would be without the damage before it.
void AudioFile::notePadding() {
    const auto tag = encoderTagOf(_path, _firstPosition);
    if (_padding || !tag || _stream->codecpar->frame_size <= 0)
        return;
    constexpr std::uint64_t decoderDelay = 529;
    const auto frameSize = static_cast<std::uint64_t>(_stream->codecpar->frame_size);
    const std::uint64_t end = tag->frames * frameSize;
    const std::uint64_t count = tag->padding - std::min<std::uint64_t>(tag->padding, decoderDelay);
    _padding = SampleRange{end - std::min(end, count), count};
}

/// How many samples at the end of a range are padding.
std::uint64_t AudioFile::paddingWithin(SampleRange range) const {
    const std::uint64_t end = range.first + range.count;
    if (end <= _padding->first || range.first >= _padding->first + _padding->count)
        return 0;
    return std::min(end - _padding->first, range.count);
}

std::uint64_t AudioFile::samplesUntil(std::int64_t ticks) const {
    const AVRational rateBase = {1, static_cast<int>(rate())};
    return static_cast<std::uint64_t>(av_rescale_q(ticks, _stream->time_base, rateBase));
}

} // namespace quarner
