// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/EncoderTag.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/ffmpeg/MpegHeader.h"

extern "C" {
#include <libavutil/crc.h>
}

namespace quarner {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t decoderDelay = 529; // of every decoder of layer 3
constexpr std::size_t checkedBytes = 190;   // in the usual frame of two channels

std::uint32_t number(Bytes bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = offset; i < offset + size; ++i)
        value = value << 8 | (i < bytes.size() ? bytes[i] : 0);
    return value;
}

std::string_view text(Bytes bytes, std::size_t offset, std::size_t size) {
    const Bytes part = bytes.subspan(std::min(offset, bytes.size()));
    return {reinterpret_cast<const char*>(part.data()), std::min(size, part.size())};
}

std::uint32_t crcOf(Bytes bytes) {
    return av_crc(av_crc_get_table(AV_CRC_16_ANSI_LE), 0, bytes.data(), bytes.size());
}

/// Some encoders sum up everything before the checksum, some always the same number of bytes, with
/// zeros in the place of the checksum and behind a shorter frame.
bool isCrcRight(Bytes frame, std::size_t offset) {
    if (frame.size() < offset + 2)
        return false;
    const std::uint32_t noted = number(frame, offset, 2);
    std::array<std::uint8_t, checkedBytes> bytes = {};
    std::copy_n(frame.begin(), std::min(frame.size(), bytes.size()), bytes.begin());
    for (std::size_t i = offset; i < std::min(offset + 2, bytes.size()); ++i)
        bytes[i] = 0;
    return noted == crcOf(frame.first(offset)) || noted == crcOf(bytes);
}

std::size_t xingOffset(const MpegHeader& header) {
    if (header.version == 1)
        return header.channels == 1 ? 21 : 36;
    return header.channels == 1 ? 13 : 21;
}

std::optional<EncoderTag> xingTagIn(Bytes frame, std::size_t start) {
    const std::string_view mark = text(frame, start, 4);
    if (mark != "Xing" && mark != "Info")
        return std::nullopt;
    const std::uint32_t fields = number(frame, start + 4, 4);
    std::size_t next = start + 8;
    const auto field = [&](std::uint32_t bit, std::size_t size) {
        const std::size_t offset = next;
        next += (fields & bit) != 0 ? size : 0;
        return (fields & bit) != 0 ? number(frame, offset, 4) : 0;
    };
    EncoderTag tag;
    tag.frames = field(1, 4);
    tag.bytes = field(2, 4);
    field(4, 100); // positions for seeking
    field(8, 4);   // quality
    const std::string_view encoder = text(frame, next, 4);
    tag.isTrimmed = encoder == "LAME" || encoder == "Lavf" || encoder == "Lavc";
    if (tag.isTrimmed) {
        const std::uint32_t trimming = number(frame, next + 21, 3);
        const std::uint32_t padding = trimming & 0xfff;
        tag.delay = (trimming >> 12) + decoderDelay;
        tag.padding = padding - std::min(padding, decoderDelay);
        tag.isCopy = encoder == "Lavf" && number(frame, next + 4, 1) == 0; // names no version
        tag.isCrcRight = isCrcRight(frame, next + 34);
    }
    return tag;
}

std::optional<EncoderTag> vbriTagIn(Bytes frame) {
    constexpr std::size_t start = 36;
    if (text(frame, start, 4) != "VBRI" || number(frame, start + 4, 2) != 1)
        return std::nullopt;
    EncoderTag tag;
    tag.bytes = number(frame, start + 10, 4);
    tag.frames = number(frame, start + 14, 4);
    return tag;
}

} // namespace

std::optional<EncoderTag> encoderTagIn(Bytes frame) {
    const auto header = mpegHeader(frame);
    if (!header || header->layer != 3)
        return std::nullopt;
    const auto tag = xingTagIn(frame, xingOffset(*header));
    return tag ? tag : vbriTagIn(frame);
}

} // namespace quarner
