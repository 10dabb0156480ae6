// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/AudioDecoder.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace quarner {

namespace {

constexpr int mostErrors = 1000;              // one after another, within a packet
constexpr std::int64_t largestPacket = 65536; // samples; a longer one is damage in the tables

} // namespace

std::unique_ptr<AudioDecoder> AudioDecoder::open(std::unique_ptr<PacketSource> source) {
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(std::move(source)));
    return decoder->openCodec() ? std::move(decoder) : nullptr;
}

AudioDecoder::AudioDecoder(std::unique_ptr<PacketSource> source)
    : _source(std::move(source)), _frame(av_frame_alloc()) {}

AudioDecoder::~AudioDecoder() {
    av_frame_free(&_frame);
    avcodec_free_context(&_codec);
}

bool AudioDecoder::openCodec() {
    const AVCodecParameters& parameters = _source->parameters();
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    _codec = codec ? avcodec_alloc_context3(codec) : nullptr;
    if (_codec == nullptr || _frame == nullptr || _packet.get() == nullptr ||
        avcodec_parameters_to_context(_codec, &parameters) < 0)
        return false;
    _codec->thread_count = 1;
    _codec->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL; // a lost packet must not shift the trimming
    return avcodec_open2(_codec, codec, nullptr) == 0;
}

AudioDecoder::Chunk AudioDecoder::next() {
    for (int errors = 0; errors < mostErrors;) {
        const int outcome = avcodec_receive_frame(_codec, _frame);
        if (outcome == 0) {
            errors = 0;
            const Chunk chunk = sound();
            if (chunk.range.count > 0)
                return chunk;
        } else if (outcome == AVERROR(EAGAIN)) {
            const Chunk silence = silenceForPacket();
            if (silence.range.count > 0)
                return silence;
            if (!advance())
                return {.kind = Chunk::Kind::failure};
        } else if (outcome == AVERROR_EOF) {
            return {.kind = Chunk::Kind::end};
        } else {
            _isDamaged = true;
            ++errors;
        }
    }
    return {.kind = Chunk::Kind::end}; // a decoder that does not take the next packet
}

AudioDecoder::Chunk AudioDecoder::sound() {
    // libavcodec gives the first frame of another rate the rate of the frames before it.
    const bool isJoin = _packet.rate > 0 && static_cast<int>(_packet.rate) != _frame->sample_rate;
    if (isJoin)
        _frame->sample_rate = static_cast<int>(_packet.rate);
    if (_frame->nb_samples <= 0 || _frame->sample_rate <= 0)
        return {};
    const auto samples = static_cast<std::uint64_t>(_frame->nb_samples);
    _rate = static_cast<std::uint32_t>(_frame->sample_rate);
    notePriming();
    const SampleRange range = heard(samples);
    _primingLeft -= std::min(_primingLeft, samples);
    _decoded += samples;
    const std::uint64_t tail = _packet.hasTail ? samples - range.first - range.count : 0;
    return {Chunk::Kind::sound, _frame, range, _rate, tail, isJoin};
}

/// A decoder that is told to leave the trimming to us notes in a frame what it would have skipped.
/// What the packet itself says of that is known already.
void AudioDecoder::notePriming() {
    const AVFrameSideData* note = av_frame_get_side_data(_frame, AV_FRAME_DATA_SKIP_SAMPLES);
    constexpr std::size_t noteSize = 10;
    constexpr std::uint32_t mostPriming = 65536;
    if (note == nullptr || note->size < noteSize || _packets != 1 ||
        av_packet_get_side_data(_packet.get(), AV_PKT_DATA_SKIP_SAMPLES, nullptr) != nullptr)
        return;
    _priming = std::min(AV_RL32(note->data), mostPriming);
    _primingLeft = _priming;
}

/// What the current packet, all of it decoded by now, has left out.
AudioDecoder::Chunk AudioDecoder::silenceForPacket() {
    if (!std::exchange(_isPending, false))
        return {};
    const bool isDelayed = (_codec->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
    const bool isEmpty = _decoded == 0 && !_packet.isLost;
    const bool preparesDecoder = isEmpty && _packets == 1;
    if (isEmpty && !isDelayed)
        ++_emptyPackets;
    if (preparesDecoder || !(_isDamaged || _packet.isLost || (isEmpty && !isDelayed)))
        return {};
    const std::int64_t whole = inSamples(_packet.duration);
    const auto samples =
        static_cast<std::uint64_t>(_packet.isLost ? whole : std::min(whole, largestPacket));
    if (samples <= _decoded)
        return {};
    const SampleRange range = heard(samples - _decoded);
    return {Chunk::Kind::silence, nullptr, {0, range.count}, _rate};
}

/// Sends the decoder the next packet, or the end.
bool AudioDecoder::advance() {
    switch (_source->read(_packet)) {
    case PacketSource::Reading::packet:
        sendPacket();
        return true;
    case PacketSource::Reading::end:
        return avcodec_send_packet(_codec, nullptr) == 0;
    default:
        return false;
    }
}

void AudioDecoder::sendPacket() {
    _decoded = 0;
    _isPending = true;
    ++_packets;
    _rate = _packet.rate > 0 ? _packet.rate
                             : static_cast<std::uint32_t>(std::max(_codec->sample_rate, 0));
    if (_packet.isLost)
        av_log(nullptr, AV_LOG_WARNING, "damage: frames are lost, silence takes their place\n");
    _isDamaged = !_packet.isLost && avcodec_send_packet(_codec, _packet.get()) < 0;
}

std::int64_t AudioDecoder::inSamples(std::int64_t ticks) const {
    const AVRational sampleTime = {1, static_cast<int>(std::max<std::uint32_t>(_rate, 1))};
    return ticks == Packet::open ? ticks : av_rescale_q(ticks, _packet.timeBase, sampleTime);
}

/// Returns the part of the packet's next samples that remains after trimming.
SampleRange AudioDecoder::heard(std::uint64_t samples) const {
    const auto start = static_cast<std::int64_t>(_decoded);
    const auto count = static_cast<std::int64_t>(samples);
    const auto cut = static_cast<std::int64_t>(std::min(_packet.cut, samples));
    const std::int64_t skipped =
        std::max(inSamples(_packet.heardFrom) - start, static_cast<std::int64_t>(_primingLeft));
    const std::int64_t from = std::clamp<std::int64_t>(skipped, 0, count);
    const std::int64_t until = std::clamp(inSamples(_packet.heardUntil) - start, from, count);
    return {static_cast<std::uint64_t>(from),
            static_cast<std::uint64_t>(std::max(std::min(until, count - cut), from) - from)};
}

} // namespace quarner
