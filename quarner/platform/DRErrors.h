// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quarner/platform/Export.h"

namespace quarner {

/// The error codes of a failed burn: 32 bits, the top bit set. A delegate receives them as signed
/// numbers, so negative (code − 2^32): see `signedCode`. Code 0 is not in this list: it stands for
/// a burn that was refused before it started, or a failure without a code.
enum class DRError : std::uint32_t {
    UserCanceled = 0x80020066, ///< `stopBurn`; arrives as `burnProgressDidCanceled`

    DeviceBusy = 0x8002F001,         ///< another burn or program is using the drive or its image
    DeviceVanished = 0x8002F002,     ///< the drive was unplugged
    MediaNotPresent = 0x8002F003,    ///< no disc in the drive, or it does not become ready
    MediaNotWritable = 0x8002F004,   ///< the disc is not blank and cannot be overwritten
    MediaTooSmall = 0x8002F005,      ///< the layout takes more sectors than the disc has
    WrongMedia = 0x8002F006,         ///< not a CD
    EmptyLayout = 0x8002F007,        ///< nothing to write
    TooManyTracks = 0x8002F008,      ///< an audio disc has at most 99 tracks (Red Book)
    DeviceNotPermitted = 0x8002F009, ///< this user may not open the drive
    DeviceHanging = 0x8002F00A,      ///< the drive does not respond any more

    SourceMissing = 0x8002F011,    ///< a source file is gone or may not be read
    SourceChanged = 0x8002F012,    ///< a source file was changed or replaced since it was added
    SourceUnreadable = 0x8002F013, ///< a source file cannot be read or decoded

    NoSpace = 0x8002F021,          ///< the file system of the image is full
    PermissionDenied = 0x8002F022, ///< the image may not be written there
    WriteFailed = 0x8002F023,      ///< any other write error
    ReadBackFailed = 0x8002F024,   ///< what was written could not be read back
    VerifyFailed = 0x8002F025,     ///< what was read back differs from what was written
    FolderMissing = 0x8002F026,    ///< the folder for the image does not exist

    Internal = 0x8002F0FF, ///< an internal error, for instance out of memory
};

/// What the error of a burn is about, for programs. Empty where that is not known.
struct BurnErrorInfo {
    std::string path = {};                    ///< the source file, or the file of the image
    std::optional<std::uint64_t> sector = {}; ///< the first sector of the disc that is concerned
    /// The recording service's or the drive's own words, in English: for a log, and for users who
    /// want to know more than the code says.
    std::string message = {};

    /// Compares every member.
    bool operator==(const BurnErrorInfo&) const = default;
};

/// Returns one English sentence for a code that a delegate received (`BurnError::code`), for
/// messages to users. Never empty. The text is static.
QUARNER_EXPORT std::string_view textForBurnErrorCode(std::int64_t code);

/// Returns a code as a delegate receives it: read as signed 32-bit and widened.
constexpr std::int64_t signedCode(DRError error) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(error));
}

} // namespace quarner
