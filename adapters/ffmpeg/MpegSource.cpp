// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegSource.h"

#include <algorithm>
#include <cstring>

#include "adapters/ffmpeg/MpegProof.h"

namespace quarner {

namespace {

constexpr std::size_t largestTagFrame = 2881; // bytes of the largest frame of layer 3

} // namespace

MpegSource::MpegSource(WindowedFile& file)
    : _file(file), _range(bytesBetweenTags(file)), _parameters(avcodec_parameters_alloc()),
      _frames(file, _range) {
    if (_parameters != nullptr) {
        _parameters->codec_type = AVMEDIA_TYPE_AUDIO;
        _parameters->codec_id = AV_CODEC_ID_MP3; // its decoder takes all three layers
    }
    readTag();
}

MpegSource::~MpegSource() { avcodec_parameters_free(&_parameters); }

void MpegSource::readTag() {
    const auto bytes = _file.view(_range.begin, largestTagFrame);
    _first = mpegHeader(bytes);
    _tag = _first
               ? encoderTagIn(bytes.first(std::min<std::size_t>(bytes.size(), _first->frameBytes)))
               : std::nullopt;
    if (!_tag)
        return;
    if (_tag->frames > 0 || _tag->bytes > 0)
        _frames.skipTo(_range.begin + _first->frameBytes);
    // Far more bytes than the tag knows of: files were joined, and its padding is in the middle.
    const std::uint64_t held = _range.end - _range.begin;
    const bool isJoined = _tag->bytes > 0 && held > _tag->bytes + _tag->bytes / 16;
    if (_tag->frames > 0 && _tag->isTrimmed && !isJoined) {
        _padding.until = static_cast<std::int64_t>(_tag->frames * _first->samples);
        _padding.from = std::max<std::int64_t>(_padding.until - _tag->padding, 0);
    }
}

bool MpegSource::isCertain() {
    if (_tag && _tag->isCrcRight)
        return true;
    if (!_first) // without this the whole of another kind of file is searched for frames
        return false;
    constexpr int enough = 8; // frames
    MpegFrames frames(_file, _range);
    for (int i = 0; i < enough; ++i)
        if (const auto frame = frames.next();
            !frame || frames.isUnusual() || (i == 0 && frame->offset != _range.begin))
            return false;
    return true;
}

std::optional<SoundLength> MpegSource::provenLength() {
    if (!_tag || !_tag->isCrcRight || _tag->isCopy)
        return std::nullopt;
    const std::uint64_t bytes = _range.end - _range.begin;
    const bool isWhole = _tag->bytes == bytes || _tag->bytes + _first->frameBytes == bytes;
    const auto second = mpegHeader(_file.view(_frames.offset(), MpegHeader::size));
    const std::int64_t heard = _padding.from - std::int64_t(_tag->delay);
    if (!isWhole || !second || !second->isLike(*_first) || heard <= 0 ||
        !MpegProof(_file, {_frames.offset(), _range.end}, *_first).fits(_tag->frames))
        return std::nullopt;
    return SoundLength{static_cast<std::uint64_t>(heard), _first->rate};
}

std::optional<SoundLength> MpegSource::scannedLength() {
    SoundLength length;
    while (const auto frame = nextFrame()) {
        if (_frames.isUnusual())
            return std::nullopt;
        const Span heard = place(*frame);
        length.samples += static_cast<std::uint64_t>(heard.until - heard.from);
        length.rate = frame->header.rate;
    }
    return _frames.hasFailed() ? std::nullopt : std::optional(length);
}

/// The next frame that is sound. Where files were joined, a tag of text and then the encoder's tag
/// may come first.
std::optional<MpegFrames::Frame> MpegSource::nextFrame() {
    auto frame = _frames.next();
    if (frame && frame->followsTag && isEncoderTag(*frame))
        frame = _frames.next();
    return frame;
}

bool MpegSource::isEncoderTag(const MpegFrames::Frame& frame) {
    const auto tag = encoderTagIn(_file.view(frame.offset, static_cast<std::size_t>(frame.bytes)));
    return tag && (tag->frames > 0 || tag->bytes > 0);
}

PacketSource::Reading MpegSource::read(Packet& packet) {
    const auto frame = nextFrame();
    if (!frame)
        return _frames.hasFailed() ? Reading::failure : Reading::end;
    const Span heard = place(*frame);
    packet.timeBase = {1, static_cast<int>(frame->header.rate)};
    packet.rate = frame->header.rate;
    packet.duration =
        std::int64_t(frame->header.samples) * std::int64_t(std::max<std::uint64_t>(frame->lost, 1));
    packet.heardFrom = heard.from;
    packet.heardUntil = heard.until;
    packet.isLost = frame->lost > 0;
    return packet.isLost || fill(packet, *frame) ? Reading::packet : Reading::failure;
}

/// Which samples of the next frame are heard, counted from its first one on.
MpegSource::Span MpegSource::place(const MpegFrames::Frame& frame) {
    const auto samples =
        std::int64_t(frame.header.samples) * std::int64_t(std::max<std::uint64_t>(frame.lost, 1));
    const std::int64_t start = _position;
    _position += samples;
    Span heard = {0, samples};
    if (_tag && _tag->isTrimmed)
        heard.from = std::clamp<std::int64_t>(std::int64_t(_tag->delay) - start, 0, samples);
    if (start < _padding.until && _position > _padding.from)
        heard.until = _padding.from - start;
    heard.until = std::max(heard.until, heard.from);
    return heard;
}

bool MpegSource::fill(Packet& packet, const MpegFrames::Frame& frame) {
    const auto bytes = _file.view(frame.offset, static_cast<std::size_t>(frame.bytes));
    av_packet_unref(packet.get());
    if (bytes.size() != frame.bytes || av_new_packet(packet.get(), int(bytes.size())) < 0)
        return false;
    std::memcpy(packet->data, bytes.data(), bytes.size());
    return true;
}

} // namespace quarner
