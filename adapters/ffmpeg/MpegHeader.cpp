// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegHeader.h"

#include <array>

namespace quarner {

namespace {

using BitRates = std::array<std::uint32_t, 15>; // kbit/s; 0: not named

constexpr BitRates layer1 = {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448};
constexpr BitRates layer2 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr BitRates layer3 = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr BitRates lowLayer1 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256};
constexpr BitRates lowLayers = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

const BitRates& bitRates(std::uint32_t version, std::uint32_t layer) {
    if (version != 1)
        return layer == 1 ? lowLayer1 : lowLayers;
    return layer == 1 ? layer1 : layer == 2 ? layer2 : layer3;
}

std::uint32_t samplesPerFrame(std::uint32_t version, std::uint32_t layer) {
    if (layer == 1)
        return 384;
    return layer == 3 && version != 1 ? 576 : 1152;
}

std::uint32_t bytesPerFrame(const MpegHeader& header, bool isPadded) {
    const std::uint32_t padding = isPadded ? 1 : 0;
    if (header.layer == 1)
        return 4 * (12000 * header.bitRate / header.rate + padding);
    return header.samples / 8 * 1000 * header.bitRate / header.rate + padding;
}

} // namespace

std::optional<MpegHeader> mpegHeader(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < MpegHeader::size || bytes[0] != 0xff || (bytes[1] & 0xe0) != 0xe0)
        return std::nullopt;
    constexpr std::array<std::uint32_t, 4> versions = {3, 0, 2, 1};
    constexpr std::array<std::uint32_t, 4> layers = {0, 3, 2, 1};
    constexpr std::array<std::uint32_t, 3> rates = {44100, 48000, 32000};
    const std::size_t bitRate = bytes[2] >> 4;
    const std::size_t rate = (bytes[2] >> 2) & 3;
    MpegHeader header;
    header.version = versions[(bytes[1] >> 3) & 3];
    header.layer = layers[(bytes[1] >> 1) & 3];
    if (header.version == 0 || header.layer == 0 || bitRate == 0 || bitRate == 15 || rate == 3)
        return std::nullopt;
    header.rate = rates[rate] >> (header.version - 1);
    header.channels = bytes[3] >> 6 == 3 ? 1 : 2;
    header.samples = samplesPerFrame(header.version, header.layer);
    header.bitRate = bitRates(header.version, header.layer)[bitRate];
    header.frameBytes = bytesPerFrame(header, (bytes[2] & 2) != 0);
    return header;
}

} // namespace quarner
