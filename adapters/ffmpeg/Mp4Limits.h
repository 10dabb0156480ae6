// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// True if libavformat opens an MP4 file in little time, and holds its tables in little memory:
/// 1,000,000 packets at most. The file begins at the offset `begin`.
///
/// libavformat reads a table wherever it finds one: in any box, at any depth, behind sizes that
/// cannot be right. So the names of the tables are searched for in all bytes but those of the media
/// and of the notes (title, lyrics, cover) at their usual places, and the numbers of entries that
/// stand behind the names are added up. Of the notes there may be 20,000, with 4 MiB of text.
bool hasBearableTables(WindowedFile& file, std::uint64_t begin);

} // namespace quarner
