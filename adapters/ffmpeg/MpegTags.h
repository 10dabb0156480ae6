// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <span>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// The size in bytes of the text tag that begins at an offset: ID3, APE or Lyrics3. 0 if none does.
std::uint64_t tagSizeAt(WindowedFile& file, std::uint64_t offset);

/// The bytes of a file that are sound: without the tags in front and behind.
struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};
ByteRange bytesBetweenTags(WindowedFile& file);

} // namespace quarner
