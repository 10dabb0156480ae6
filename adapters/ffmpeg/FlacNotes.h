// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// A byte of a file that is presented with another value.
struct ReplacedByte {
    std::uint64_t offset = 0;
    std::uint8_t value = 0;
};

/// The bytes of a FLAC file that begins at an offset, by which its comments, pictures and other
/// blocks that playing does not need become padding, which is skipped: libavformat takes minutes
/// for a million comments. At most 1,000 blocks are looked at.
std::vector<ReplacedByte> notesAsPadding(WindowedFile& file, std::uint64_t begin);

} // namespace quarner
