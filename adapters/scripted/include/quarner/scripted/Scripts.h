// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRMSF.h"
#include "quarner/platform/MediaService.h"
#include "quarner/platform/Value.h"

namespace quarner {

// The things of a scripted platform, described as data. Every description is complete as it
// stands; a test names only what matters to it:
//
//     platform.addDrive({.name = "Writer", .disc = DiscScript{.blocksFree = 1000}});
//     platform.putSong("/music/one.mp3", {.seconds = 205.3}, {.size = 4'200'000});

/// A disc. As it stands, a blank CD-R of 80 minutes.
struct DiscScript {
    std::string type = DRDeviceMediaTypeCDR;
    bool isBlank = true;
    bool isAppendable = true;
    bool isErasable = false;
    bool isOverwritable = false;
    /// The play times that the drive answers; nothing for unknown ones. They and the blocks below
    /// have nothing to do with one another.
    std::optional<DRMSF> spaceUsed = DRMSF::msf();
    std::optional<DRMSF> spaceFree = DRMSF::msfWithFrames(359'847);
    /// Blocks of 2048 bytes in the media information; nothing for a missing entry.
    std::optional<std::uint64_t> blocksUsed = 0;
    std::optional<std::uint64_t> blocksFree = 359'847;
    /// Blocks per second, the fastest last; nothing for a missing entry.
    std::optional<Array> speeds = Array{300, 1800, 3900};
    /// Whether the drive's status tells anything of this disc at all.
    bool hasMediaInfo = true;
};

/// A drive. As it stands, an empty writer.
struct DriveScript {
    std::string name = "Scripted Drive";
    std::optional<bool> canWriteCD = true; ///< nothing for a missing entry
    std::optional<double> currentSpeed = std::nullopt;
    bool isTransitioning = false; ///< a disc is being loaded or examined
    std::optional<DiscScript> disc = std::nullopt;
};

/// A file as the file services see it.
struct FileScript {
    std::int64_t size = 4'000'000;                         ///< bytes
    std::optional<std::uint32_t> typeCode = std::nullopt;  ///< see `typeCode`
    std::optional<std::string> displayName = std::nullopt; ///< otherwise the last component
    Icon icon = {};
    bool isReadable = true; ///< otherwise its attributes cannot be read
    /// The path that it stands for, if it is an alias; that one may be an alias again.
    std::optional<std::string> aliasOf = std::nullopt;
    /// Whether a file node can be made of it, and if not, whether that is told by an exception.
    bool makesNode = true;
    bool nodeThrows = false;
    /// What the node's property dictionary holds from the start.
    Dictionary nodeProperties = {};
};

/// What a file plays. The play time that the media service reads and the length of the track that
/// the recording service makes are independent where a test wants them to be.
struct MediaScript {
    double seconds = 0.0;
    /// The play time as the media service tells it, instead of `seconds`.
    std::optional<QTTime> time = std::nullopt;
    /// Stereo samples at 44.1 kHz, instead of those of `seconds`.
    std::optional<std::uint64_t> samples = std::nullopt;
    /// The track's length in frames, instead of the samples in whole sectors.
    std::optional<std::uint32_t> frames = std::nullopt;
    /// The track's estimate in blocks, instead of its length and pre-gap.
    std::optional<std::uint64_t> estimateLength = std::nullopt;
    bool isPlayable = true; ///< otherwise the media service cannot open it
    bool makesTrack = true; ///< otherwise no track can be made of it
    /// What the track's property dictionary holds from the start.
    Dictionary trackProperties = {};
};

/// The number of a type code of four characters: `typeCode("M4P ")`.
constexpr std::uint32_t typeCode(std::string_view fourCharacters) {
    std::uint32_t code = 0;
    for (const char character : fourCharacters)
        code = code << 8 | static_cast<unsigned char>(character);
    return code;
}

} // namespace quarner
