// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/AudioDecoder.h"

#include <utility>

namespace quarner {

std::unique_ptr<AudioDecoder> AudioDecoder::open(const std::string& path) {
    auto file = AudioFile::open(path);
    if (!file)
        return nullptr;
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(std::move(file)));
    return decoder->openCodec() ? std::move(decoder) : nullptr;
}

AudioDecoder::AudioDecoder(std::unique_ptr<AudioFile> file)
    : _file(std::move(file)), _frame(av_frame_alloc()), _promiseTrim(_file->skipScale()),
      _soundTrim(_file->skipScale()) {}

AudioDecoder::~AudioDecoder() {
    av_frame_free(&_frame);
    avcodec_free_context(&_codec);
}

bool AudioDecoder::openCodec() {
    const AVCodecParameters* parameters = _file->stream().codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters->codec_id);
    _codec = codec ? avcodec_alloc_context3(codec) : nullptr;
    if (_codec == nullptr || _frame == nullptr ||
        avcodec_parameters_to_context(_codec, parameters) < 0)
        return false;
    _codec->pkt_timebase = _file->stream().time_base;
    _codec->thread_count = 1;
    _codec->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL; // a lost packet must not move the trimming
    return avcodec_open2(_codec, codec, nullptr) == 0;
}

AudioDecoder::Piece AudioDecoder::next() {
    for (;;) {
        const int outcome = avcodec_receive_frame(_codec, _frame);
        if (outcome == 0) {
            const Piece piece = sound();
            if (piece.range.count > 0)
                return piece;
        } else if (outcome == AVERROR(EAGAIN)) {
            const std::uint64_t silence = silenceForPacket();
            if (!advance())
                return {.kind = Piece::Kind::failure};
            if (silence > 0)
                return {.kind = Piece::Kind::silence, .range = {0, silence}};
        } else if (outcome == AVERROR_EOF) {
            return {.kind = Piece::Kind::end};
        } else {
            _isDamaged = true;
        }
    }
}

AudioDecoder::Piece AudioDecoder::sound() {
    const auto samples = static_cast<std::uint64_t>(_frame->nb_samples);
    _decoded += samples;
    return {Piece::Kind::sound, _frame, _soundTrim.heard(samples)};
}

/// What the current packet, all decoded now, has left out.
std::uint64_t AudioDecoder::silenceForPacket() {
    const std::uint64_t samples = std::exchange(_packet.samples, 0);
    const bool mayBeEmpty = _packets < 2 || (_codec->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
    const bool isLost = _isDamaged || (_decoded == 0 && !mayBeEmpty);
    return isLost && samples > _decoded ? _soundTrim.heard(samples - _decoded).count : 0;
}

/// Feeds the decoder with the next packet, or with the end.
bool AudioDecoder::advance() {
    switch (readPacket()) {
    case AudioFile::Reading::packet:
        sendPacket();
        return true;
    case AudioFile::Reading::end:
        return avcodec_send_packet(_codec, nullptr) == 0;
    default:
        return false;
    }
}

AudioFile::Reading AudioDecoder::readPacket() {
    const AudioFile::Reading reading = _file->read(_packet);
    if (reading == AudioFile::Reading::packet) {
        _promiseTrim.begin(_packet);
        _promised += _promiseTrim.heard(_packet.samples).count;
    }
    return reading;
}

void AudioDecoder::sendPacket() {
    _soundTrim.begin(_packet);
    _decoded = 0;
    ++_packets;
    _isDamaged = avcodec_send_packet(_codec, _packet.get()) < 0;
}

bool AudioDecoder::skipToEnd() {
    AudioFile::Reading reading = AudioFile::Reading::packet;
    while (reading == AudioFile::Reading::packet)
        reading = readPacket();
    return reading == AudioFile::Reading::end;
}

} // namespace quarner
