// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/EncoderTag.h"

#include <algorithm>
#include <fstream>

namespace quarner {

namespace {

constexpr std::int64_t largestFrame = 4096; // bytes

std::uint32_t number(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(offset, size))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

} // namespace

std::optional<EncoderTag> encoderTagIn(std::string_view bytes) {
    const std::size_t start = std::max(bytes.rfind("Xing") + 1, bytes.rfind("Info") + 1);
    if (start == 0)
        return std::nullopt;
    const std::string_view tag = bytes.substr(start - 1);
    constexpr std::uint32_t hasFrames = 1;
    constexpr std::uint32_t hasBytes = 2;
    constexpr std::uint32_t hasTable = 4;
    constexpr std::uint32_t hasQuality = 8;
    if (tag.size() < 12 || (number(tag, 4, 4) & hasFrames) == 0)
        return std::nullopt;
    const std::uint32_t fields = number(tag, 4, 4);
    const std::size_t encoder = 12U + ((fields & hasBytes) != 0 ? 4U : 0U) +
                                ((fields & hasTable) != 0 ? 100U : 0U) +
                                ((fields & hasQuality) != 0 ? 4U : 0U);
    constexpr std::size_t trimmingOffset = 21; // behind the name of the encoder
    if (tag.size() < encoder + trimmingOffset + 3)
        return std::nullopt;
    const std::string_view name = tag.substr(encoder, 4);
    if (name != "LAME" && name != "Lavf" && name != "Lavc")
        return std::nullopt;
    const std::uint32_t trimming = number(tag, encoder + trimmingOffset, 3);
    return EncoderTag{number(tag, 8, 4), trimming >> 12, trimming & 0xfff};
}

std::optional<EncoderTag> encoderTagOf(const std::string& path, std::int64_t firstFrame) {
    const std::int64_t start = std::max<std::int64_t>(firstFrame - largestFrame, 0);
    std::string bytes(static_cast<std::size_t>(std::max<std::int64_t>(firstFrame - start, 0)), 0);
    std::ifstream file(path, std::ios::binary);
    file.seekg(start);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        return std::nullopt;
    return encoderTagIn(bytes);
}

} // namespace quarner
