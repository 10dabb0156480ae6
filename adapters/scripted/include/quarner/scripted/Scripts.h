// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRMSF.h"
#include "quarner/platform/FileService.h"
#include "quarner/platform/MediaService.h"
#include "quarner/platform/Value.h"

namespace quarner {

// The parts of a scripted platform, described by data. Every field has a default; a test names only
// what matters to it:
//
//     platform.addDrive({.name = "Writer", .disc = DiscScript{.blocksFree = 1000}});
//     platform.putSong("/music/one.mp3", {.seconds = 205.3}, {.size = 4'200'000});

/// A disc. By default a blank CD-R of 80 minutes.
struct DiscScript {
    std::string type = DRDeviceMediaTypeCDR;
    bool isBlank = true;
    bool isAppendable = true;
    bool isErasable = false;
    bool isOverwritable = false;
    /// The play times that the drive returns; `std::nullopt` if unknown. They are independent of
    /// the blocks below.
    std::optional<DRMSF> spaceUsed = DRMSF::msf();
    std::optional<DRMSF> spaceFree = DRMSF::msfWithFrames(359'847);
    /// Blocks of 2048 bytes in the media information; `std::nullopt` leaves the entry out.
    std::optional<std::uint64_t> blocksUsed = 0;
    std::optional<std::uint64_t> blocksFree = 359'847;
    /// Blocks per second, the fastest last; `std::nullopt` leaves the entry out.
    std::optional<Array> speeds = Array{300, 1800, 3900};
    /// Whether the drive's status has media information for this disc.
    bool hasMediaInfo = true;
};

/// A drive. By default a CD writer without a disc.
struct DriveScript {
    std::string name = "Scripted Drive";
    std::optional<bool> canWriteCD = true; ///< `std::nullopt` leaves the entry out
    std::optional<double> currentSpeed = std::nullopt;
    bool isTransitioning = false; ///< a disc is being loaded or examined
    std::optional<DiscScript> disc = std::nullopt;
    std::string accessProblem = {}; ///< see `DRDevice::accessProblem`
};

/// A file as the file service sees it.
struct FileScript {
    std::int64_t size = 4'000'000;                         ///< bytes
    std::optional<std::uint32_t> typeCode = std::nullopt;  ///< see `typeCode`
    std::optional<std::string> displayName = std::nullopt; ///< by default the last component
    Icon icon = {};
    bool isReadable = true; ///< if false, its attributes cannot be read
    /// The target, if the file is an alias. The target may be an alias too.
    std::optional<std::string> aliasOf = std::nullopt;
    /// Whether a file node can be made from the file, and if not, whether that throws an exception.
    bool makesNode = true;
    bool nodeThrows = false;
    /// The initial entries of the node's property dictionary.
    Dictionary nodeProperties = {};
    /// Why the file cannot be read. By default nothing if it is readable, otherwise "Permission
    /// denied".
    std::optional<FileProblem> problem = std::nullopt;
};

/// The media of a file. The play time of the media service and the length of the recording
/// service's track can be set independently.
struct MediaScript {
    double seconds = 0.0;
    /// The play time that the media service returns, instead of `seconds`.
    std::optional<QTTime> time = std::nullopt;
    /// Stereo samples at 44.1 kHz, instead of those of `seconds`.
    std::optional<std::uint64_t> samples = std::nullopt;
    /// The track's length in frames, instead of the samples rounded up to whole sectors.
    std::optional<std::uint32_t> frames = std::nullopt;
    /// The track's estimate in blocks, instead of its length and pre-gap.
    std::optional<std::uint64_t> estimateLength = std::nullopt;
    bool isPlayable = true; ///< if false, the media service cannot open it
    bool makesTrack = true; ///< if false, no track can be made from it
    /// The initial entries of the track's property dictionary.
    Dictionary trackProperties = {};
    /// Why the media service refuses the file, instead of what follows from its play time.
    std::optional<MovieProblem> problem = std::nullopt;
    MediaTags tags = {};
};

/// Returns the number of a type code of four characters: `typeCode("M4P ")`.
constexpr std::uint32_t typeCode(std::string_view fourCharacters) {
    std::uint32_t code = 0;
    for (const char character : fourCharacters)
        code = code << 8 | static_cast<unsigned char>(character);
    return code;
}

} // namespace quarner
