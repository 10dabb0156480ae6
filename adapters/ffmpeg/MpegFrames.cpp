// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegFrames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quarner {

namespace {

bool isFrame(std::span<const std::uint8_t> packet) {
    if (packet.size() < 4)
        return false;
    const bool hasSync = packet[0] == 0xff && (packet[1] & 0xe0) == 0xe0;
    const bool hasVersion = (packet[1] & 0x18) != 0x08;
    const bool hasLayer = (packet[1] & 0x06) != 0;
    const bool hasBitRate = (packet[2] & 0xf0) != 0xf0;
    const bool hasSampleRate = (packet[2] & 0x0c) != 0x0c;
    return hasSync && hasVersion && hasLayer && hasBitRate && hasSampleRate;
}

bool isTag(std::span<const std::uint8_t> packet) {
    constexpr std::array<std::string_view, 4> marks = {"ID3", "TAG", "APETAGEX", "LYRICS"};
    return std::any_of(marks.begin(), marks.end(), [&](std::string_view mark) {
        return packet.size() >= mark.size() && std::equal(mark.begin(), mark.end(), packet.begin());
    });
}

} // namespace

MpegFrames::Content MpegFrames::classify(std::span<const std::uint8_t> packet) {
    if (!isFrame(packet))
        return isTag(packet) ? Content::tag : Content::damage;
    ++_frames;
    _bytes += packet.size();
    return Content::frame;
}

std::uint64_t MpegFrames::framesIn(std::span<const std::uint8_t> damage) const {
    if (_bytes == 0)
        return 1;
    const std::uint64_t rounded = (damage.size() * _frames + _bytes / 2) / _bytes;
    return std::max<std::uint64_t>(rounded, 1);
}

} // namespace quarner
