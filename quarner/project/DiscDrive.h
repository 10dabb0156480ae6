// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

namespace quarner {

/// What was last found out about a drive and its disc. A plain value that does not change; a
/// project returns a new one after its observers were called.
struct DiscDrive {
    /// Identifies the drive in its project for as long as it is attached. Never used again: a drive
    /// that comes back is another one. Two drives with one name have two identities.
    using Id = std::uint64_t;

    Id id = 0;
    std::string name; ///< the display name
    bool canWrite = false;

    /// False until the drive has answered for the first time, and everything below is then unknown.
    /// A drive is asked in the background, because that may take seconds.
    bool isExamined = false;
    bool hasDisc = false;
    bool isLoading = false; ///< a disc is being loaded or examined
    bool isCD = false;      ///< the disc is a CD-ROM, CD-R or CD-RW
    bool isBlank = false;
    bool isAppendable = false;
    bool isErasable = false;
    bool isOverwritable = false;
    std::uint64_t usedSeconds = 0; ///< play time on the disc
    std::uint64_t freeSeconds = 0;
    std::uint64_t usedBytes = 0; ///< blocks of 2048 bytes
    std::uint64_t freeBytes = 0;
    /// Why the drive cannot be used now: one sentence without its full stop. Empty if it can.
    std::string problem;

    bool isWritableDisc() const { return isBlank || isErasable || isOverwritable; }
    bool operator==(const DiscDrive&) const = default;
};

} // namespace quarner
