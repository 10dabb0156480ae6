// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/MpegTags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace quarner {

namespace {

constexpr std::uint64_t id3v1Size = 128;
constexpr std::uint64_t id3v2HeaderSize = 10;
constexpr std::uint64_t apeHeaderSize = 32;
constexpr std::string_view lyricsEnd = "LYRICS200";
constexpr std::uint64_t lyricsSizeDigits = 6;

std::string_view text(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The size of an ID3v2 tag, its header (or footer) of 10 bytes given.
std::uint64_t id3v2Size(std::span<const std::uint8_t> header) {
    std::uint64_t size = 0;
    for (const std::uint8_t byte : header.subspan(6, 4)) {
        if (byte > 0x7f)
            return 0;
        size = size << 7 | byte;
    }
    const bool hasFooter = (header[5] & 0x10) != 0;
    return size + id3v2HeaderSize + (hasFooter ? id3v2HeaderSize : 0);
}

/// The size of an APE tag, its header or footer of 32 bytes given.
std::uint64_t apeSize(std::span<const std::uint8_t> header) {
    const auto number = [&](std::size_t offset) {
        return std::uint64_t(header[offset]) | std::uint64_t(header[offset + 1]) << 8 |
               std::uint64_t(header[offset + 2]) << 16 | std::uint64_t(header[offset + 3]) << 24;
    };
    constexpr std::uint64_t hasHeader = 1U << 31;
    return number(12) + ((number(20) & hasHeader) != 0 ? apeHeaderSize : 0);
}

std::uint64_t lyricsSize(WindowedFile& file, std::uint64_t end) {
    const std::uint64_t footer = lyricsEnd.size() + lyricsSizeDigits;
    if (end < footer)
        return 0;
    const std::string_view last = text(file.view(end - footer, footer));
    if (last.size() != footer || !last.ends_with(lyricsEnd))
        return 0;
    std::uint64_t size = 0;
    const auto [stop, problem] = std::from_chars(last.data(), last.data() + lyricsSizeDigits, size);
    return problem == std::errc() && stop == last.data() + lyricsSizeDigits ? size + footer : 0;
}

/// The size of the tag that ends at an offset; 0 if none does.
std::uint64_t tagSizeBefore(WindowedFile& file, std::uint64_t end) {
    if (end >= id3v1Size && text(file.view(end - id3v1Size, 3)) == "TAG")
        return id3v1Size;
    if (end >= apeHeaderSize) {
        const auto footer = file.view(end - apeHeaderSize, apeHeaderSize);
        if (footer.size() == apeHeaderSize && text(footer).starts_with("APETAGEX"))
            return apeSize(footer);
    }
    if (end >= id3v2HeaderSize) {
        const auto footer = file.view(end - id3v2HeaderSize, id3v2HeaderSize);
        if (footer.size() == id3v2HeaderSize && text(footer).starts_with("3DI"))
            return id3v2Size(footer);
    }
    return lyricsSize(file, end);
}

} // namespace

std::uint64_t tagSizeAt(WindowedFile& file, std::uint64_t offset) {
    const auto header = file.view(offset, apeHeaderSize);
    if (header.size() >= id3v2HeaderSize && text(header).starts_with("ID3") && header[3] < 0xff)
        return id3v2Size(header);
    if (header.size() == apeHeaderSize && text(header).starts_with("APETAGEX"))
        return apeSize(header);
    if (text(header).starts_with("TAG"))
        return id3v1Size;
    return 0;
}

ByteRange bytesBetweenTags(WindowedFile& file) {
    ByteRange range = {0, file.size()};
    while (range.begin < range.end && text(file.view(range.begin, 3)) == "ID3") {
        const std::uint64_t size = tagSizeAt(file, range.begin);
        if (size == 0)
            break;
        range.begin += std::min(size, range.end - range.begin);
    }
    for (;;) {
        const std::uint64_t size = tagSizeBefore(file, range.end);
        if (size == 0 || size > range.end - range.begin)
            return range;
        range.end -= size;
    }
}

} // namespace quarner
