// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegFrames.h"

#include <algorithm>
#include <utility>

#include "adapters/ffmpeg/PacketSource.h"

namespace quarner {

namespace {

/// How many bytes pass before one with which a frame or a tag may begin.
std::size_t bytesWithoutStart(std::span<const std::uint8_t> bytes) {
    const auto mayStart = [](std::uint8_t byte) {
        return byte == 0xff || byte == 'I' || byte == 'A' || byte == 'T';
    };
    const std::uint8_t* const begin = bytes.data();
    const std::uint8_t* at = begin;
    while (at != begin + bytes.size() && !mayStart(*at))
        ++at;
    return static_cast<std::size_t>(at - begin);
}

} // namespace

std::optional<MpegFrames::Frame> MpegFrames::next() {
    while (_at < _end && !hasFailed()) {
        if (const auto header = frameInPlace())
            return take(*header);
        if (const std::uint64_t tag = tagAt(_at)) {
            _at += tag;
            _followsTag = _frames > 0;
            continue;
        }
        const std::uint64_t start = _at;
        if (!search())
            return std::nullopt;
        if (_frames == 0)
            continue;
        _isUnusual = true;
        if (const Frame lost = lostIn(_at - start); lost.lost > 0)
            return lost;
    }
    return std::nullopt;
}

std::optional<MpegHeader> MpegFrames::headerAt(std::uint64_t offset) {
    if (offset + MpegHeader::size > _end)
        return std::nullopt;
    return mpegHeader(_file.view(offset, MpegHeader::size));
}

bool MpegFrames::isFollowed(std::uint64_t offset, const MpegHeader& header, bool bySameFormat) {
    const std::uint64_t next = offset + header.frameBytes;
    if (next == _end || (next > _end && !bySameFormat))
        return true;
    if (const auto follower = headerAt(next))
        return !bySameFormat || follower->isLike(header);
    return tagAt(next) > 0;
}

/// The frame where one is expected.
std::optional<MpegHeader> MpegFrames::frameInPlace() {
    if (!_format)
        return frameInSearch(_at);
    const auto header = headerAt(_at);
    if (header && (header->isLike(*_format) || isFollowed(_at, *header, false)))
        return header;
    return std::nullopt;
}

std::optional<MpegHeader> MpegFrames::frameInSearch(std::uint64_t offset) {
    const auto header = headerAt(offset);
    return header && isFollowed(offset, *header, true) ? header : std::nullopt;
}

/// The size of the tag at an offset, if it ends where something else that is known begins.
std::uint64_t MpegFrames::tagAt(std::uint64_t offset) {
    const std::uint64_t size = tagSizeAt(_file, offset);
    if (size == 0 || size > _end - offset)
        return 0;
    const std::uint64_t next = offset + size;
    return next == _end || headerAt(next) || tagSizeAt(_file, next) > 0 ? size : 0;
}

/// Moves on to the next frame or tag. False if none is found.
bool MpegFrames::search() {
    constexpr std::size_t atOnce = 4096; // bytes
    const std::uint64_t start = _at;
    while (_at < _end && !_file.hasFailed()) {
        if (_at - start > PacketSource::mostDamage) {
            _hasFailed = true;
            return false;
        }
        const auto bytes =
            _file.view(_at, static_cast<std::size_t>(std::min<std::uint64_t>(atOnce, _end - _at)));
        const std::size_t skipped = bytesWithoutStart(bytes);
        _at += skipped;
        if (skipped == bytes.size())
            continue;
        const bool mayBeFrame = bytes[skipped] == 0xff;
        if (mayBeFrame ? frameInSearch(_at).has_value() : tagAt(_at) > 0)
            return true;
        ++_at;
    }
    return false;
}

MpegFrames::Frame MpegFrames::take(const MpegHeader& header) {
    Frame frame = {.header = header, .offset = _at};
    frame.followsTag = std::exchange(_followsTag, false);
    frame.bytes = std::min<std::uint64_t>(header.frameBytes, _end - _at);
    const bool isWhole = frame.bytes == header.frameBytes;
    _isUnusual = _isUnusual || !isWhole || (_format && !header.isLike(*_format));
    _format = header;
    _at += frame.bytes;
    ++_frames;
    _bytes += frame.bytes;
    return frame;
}

MpegFrames::Frame MpegFrames::lostIn(std::uint64_t bytes) {
    return {.header = *_format, .lost = (bytes * _frames + _bytes / 2) / _bytes};
}

} // namespace quarner
