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
    std::string type = DRDeviceMediaTypeCDR; ///< a DRDeviceMediaType... of DRKeys.h, or any text
    bool isBlank = true;                     ///< see `DRDevice::mediaIsBlank`
    bool isAppendable = true;                ///< see `DRDevice::mediaIsAppendable`
    bool isErasable = false;                 ///< see `DRDevice::mediaIsErasable`
    bool isOverwritable = false;             ///< see `DRDevice::mediaIsOverwritable`
    /// The recorded play time that the drive returns; `std::nullopt` if unknown. The times are
    /// independent of the blocks below.
    std::optional<DRMSF> spaceUsed = DRMSF::msf();
    /// The free play time that the drive returns; `std::nullopt` if unknown.
    std::optional<DRMSF> spaceFree = DRMSF::msfWithFrames(359'847);
    /// Recorded blocks of 2048 bytes in the media information; `std::nullopt` leaves the entry out.
    std::optional<std::uint64_t> blocksUsed = 0;
    /// Free blocks, likewise.
    std::optional<std::uint64_t> blocksFree = 359'847;
    /// Blocks per second, the fastest last; `std::nullopt` leaves the entry out.
    std::optional<Array> speeds = Array{300, 1800, 3900};
    /// Whether the drive's status has media information for this disc.
    bool hasMediaInfo = true;
};

/// A drive. By default a CD writer without a disc.
struct DriveScript {
    std::string name = "Scripted Drive";               ///< its display name
    std::optional<bool> canWriteCD = true;             ///< `std::nullopt` leaves the entry out
    std::optional<double> currentSpeed = std::nullopt; ///< blocks per second; leaves the entry out
    bool isTransitioning = false;                      ///< a disc is being loaded or examined
    std::optional<DiscScript> disc = std::nullopt;     ///< `std::nullopt` for an empty drive
    std::string accessProblem = {};                    ///< see `DRDevice::accessProblem`
};

/// A file as the file service sees it.
struct FileScript {
    std::int64_t size = 4'000'000;                         ///< bytes
    std::optional<std::uint32_t> typeCode = std::nullopt;  ///< see `typeCode`
    std::optional<std::string> displayName = std::nullopt; ///< by default the last component
    Icon icon = {};                                        ///< what `FileService::icon` returns
    bool isReadable = true; ///< if false, its attributes cannot be read
    /// The target, if the file is an alias. The target may be an alias too.
    std::optional<std::string> aliasOf = std::nullopt;
    bool makesNode = true;   ///< if false, no file node can be made from the file
    bool nodeThrows = false; ///< with `makesNode` false: whether that throws an exception
    /// The initial entries of the node's property dictionary.
    Dictionary nodeProperties = {};
    /// Why the file cannot be read. By default nothing if it is readable, otherwise "Permission
    /// denied".
    std::optional<FileProblem> problem = std::nullopt;
};

/// The media of a file. The play time of the media service and the length of the recording
/// service's track can be set independently.
struct MediaScript {
    double seconds = 0.0; ///< the play time
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
    MediaTags tags = {}; ///< what `MediaService::tags` returns
};

/// Returns the number of a type code of four characters: `typeCode("M4P ")`.
constexpr std::uint32_t typeCode(std::string_view fourCharacters) {
    std::uint32_t code = 0;
    for (const char character : fourCharacters)
        code = code << 8 | static_cast<unsigned char>(character);
    return code;
}

} // namespace quarner
