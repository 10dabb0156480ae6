// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// Returns a small MP3 file that has those frames of a file's ID3 tag that hold the title, the
/// artist, the album and the number of the track, and the file's ID3v1 tag: what libavformat reads
/// instead of the file, whose tag may have pictures of any size, and so many notes that libavformat
/// takes minutes for them. Returns nothing if the file has neither tag.
std::optional<std::vector<std::uint8_t>> id3Excerpt(WindowedFile& file);

} // namespace quarner
