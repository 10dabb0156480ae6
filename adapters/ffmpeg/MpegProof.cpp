// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegProof.h"

#include <algorithm>

namespace quarner {

namespace {

constexpr std::uint64_t places = 8;
constexpr std::size_t placeSize = 4096;   // bytes; two whole frames of layer 3 fit anywhere in them
constexpr std::uint64_t fewestFrames = 2; // one after the other, so that a chance match is none
constexpr std::uint64_t mostBytesOff = 16; // where the bit rate is constant

} // namespace

bool MpegProof::fits(std::uint64_t frames) {
    const std::uint64_t bytes = _range.end - _range.begin;
    if (frames == 0 || frames > bytes || !endsWithFrame())
        return false;
    for (std::uint64_t i = 1; i <= places; ++i)
        if (!hasFramesAt(_range.begin + bytes / (places + 1) * i))
            return false;
    if (_hasConstantBitRate) {
        const std::uint64_t expected = frames * _format.samples * 125 * _bitRate / _format.rate;
        return std::max(expected, bytes) - std::min(expected, bytes) <= mostBytesOff;
    }
    const std::uint64_t expected = _seenBytes * frames / _seenFrames;
    return expected <= 2 * bytes && bytes <= 2 * expected;
}

bool MpegProof::hasFramesAt(std::uint64_t offset) {
    const auto bytes = _file.view(
        offset, static_cast<std::size_t>(std::min<std::uint64_t>(placeSize, _range.end - offset)));
    for (std::size_t start = 0; start < bytes.size(); ++start)
        if (runAt(bytes, start).frames >= fewestFrames) {
            note(bytes, start);
            return true;
        }
    return false;
}

bool MpegProof::endsWithFrame() {
    const std::uint64_t size = std::min<std::uint64_t>(placeSize, _range.end - _range.begin);
    const auto bytes = _file.view(_range.end - size, static_cast<std::size_t>(size));
    for (std::size_t start = 0; start < bytes.size(); ++start)
        if (const Run run = runAt(bytes, start); run.frames >= fewestFrames)
            return run.end == bytes.size();
    return false;
}

MpegProof::Run MpegProof::runAt(std::span<const std::uint8_t> bytes, std::size_t start) const {
    Run run = {.end = start};
    while (run.end < bytes.size()) {
        const auto header = mpegHeader(bytes.subspan(run.end));
        if (!header || !header->isLike(_format))
            break;
        run.end += header->frameBytes;
        ++run.frames;
    }
    return run;
}

/// Counts the frames that begin at `start`.
void MpegProof::note(std::span<const std::uint8_t> bytes, std::size_t start) {
    while (start < bytes.size()) {
        const auto header = mpegHeader(bytes.subspan(start));
        if (!header)
            return;
        _hasConstantBitRate = _hasConstantBitRate && (_bitRate == 0 || _bitRate == header->bitRate);
        _bitRate = header->bitRate;
        _seenBytes += header->frameBytes;
        ++_seenFrames;
        start += header->frameBytes;
    }
}

} // namespace quarner
