// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// What the sample tables of an MP4 file (M4A, QuickTime) say of its one track of sound. Read with
/// little memory, whatever the file says.
struct Mp4Tables {
    /// One entry of an edit list.
    struct Edit {
        std::uint64_t duration = 0; ///< in ticks of the movie
        std::int64_t mediaTime = 0; ///< in ticks of the media; -1: nothing is heard
    };

    std::uint32_t movieScale = 0; ///< ticks of the movie per second
    std::uint32_t scale = 0;      ///< ticks of the media per second
    std::uint64_t packets = 0;
    std::uint64_t ticks = 0;       ///< of all packets together
    std::uint32_t packetTicks = 0; ///< of each packet but the last; 0: they differ
    std::uint32_t lastPacketTicks = 0;
    std::vector<Edit> edits;     ///< the first 16 of the edit list
    std::uint64_t editCount = 0; ///< of all edits
    bool isConsistent =
        false; ///< the tables agree with each other, and all packets are in the file

    /// The part of the media that the edit list selects, in ticks.
    struct Window {
        std::int64_t from = 0;
        std::int64_t until = 0;
    };

    /// What the edit list leaves. Nothing without an edit list, if it is more than one cut at
    /// either end, or if it has more than 16 entries.
    ///
    /// Many programs write edit lists in milliseconds: an end within one tick of the movie around
    /// the end of the media is the end of the media. Only where the media ends with a whole packet,
    /// whose table does not know the end to the sample, the edit list is obeyed as it is.
    std::optional<Window> edited() const;

    /// True if the tables prove how many ticks are heard: they are consistent, and the edit list
    /// is one that `edited` understands.
    bool areProof() const { return isConsistent && (editCount == 0 || edited()); }
};

/// Reads the tables, which must be bearable (`hasBearableTables`). Nothing if the file is no MP4
/// file, has no track of sound, or more than one.
std::optional<Mp4Tables> mp4TablesOf(WindowedFile& file);

} // namespace quarner
