// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FlacNotes.h"

namespace quarner {

std::vector<ReplacedByte> notesAsPadding(WindowedFile& file, std::uint64_t begin) {
    constexpr std::size_t mostBlocks = 1000;
    constexpr std::size_t headerSize = 4; // a bit for the last block, the type, and the size
    constexpr std::uint8_t last = 0x80;
    constexpr std::uint8_t padding = 1;
    constexpr std::uint64_t markSize = 4;
    std::vector<ReplacedByte> bytes;
    std::uint64_t at = begin + markSize;
    for (std::size_t i = 0; i < mostBlocks; ++i) {
        const auto header = file.view(at, headerSize);
        if (header.size() < headerSize)
            break;
        if ((header[0] & ~last) != 0) // 0: what the decoder has to know
            bytes.push_back({at, static_cast<std::uint8_t>((header[0] & last) | padding)});
        if ((header[0] & last) != 0)
            break;
        at += headerSize +
              (std::uint64_t(header[1]) << 16 | std::uint64_t(header[2]) << 8 | header[3]);
    }
    return bytes;
}

} // namespace quarner
