// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/Export.h"

namespace quarner {

class DRDevice;

/// What was last found out about a drive and its disc. A plain value that does not change; a
/// project returns a new one after its observers were called.
struct DiscDrive {
    /// Identifies the drive in its project for as long as it is attached. Never used again: a drive
    /// that comes back is another one. Two drives with one name have two identities.
    using Id = std::uint64_t;

    Id id = 0;             ///< 0 for one that belongs to no project
    std::string name;      ///< the display name
    bool canWrite = false; ///< it writes CDs

    /// False until the drive was examined for the first time. Until then nothing below is known.
    /// A drive is asked in the background, because that may take seconds.
    bool isExamined = false;
    bool hasDisc = false;        ///< a disc is in it and was examined
    bool isLoading = false;      ///< a disc is being loaded or examined
    std::string discKind;        ///< "CD-R", "DVD-RW"; empty if it is unknown
    bool isCD = false;           ///< the disc is a CD-ROM, CD-R or CD-RW
    bool isBlank = false;        ///< nothing is recorded on the disc
    bool isAppendable = false;   ///< a session can be written to it: it is blank, or was left open
    bool isErasable = false;     ///< it can be blanked, as a CD-RW can
    bool isOverwritable = false; ///< it can be written again without being blanked; no CD can
    std::uint64_t usedSeconds = 0; ///< play time on the disc
    std::uint64_t freeSeconds = 0; ///< play time that can still be recorded
    std::uint64_t usedBytes = 0;   ///< on the disc, in blocks of 2048 bytes
    std::uint64_t freeBytes = 0;   ///< that can still be recorded, likewise
    std::vector<double> speeds;    ///< at which it can be written, in sectors of 1/75 s per second
    /// How often the drive has reported a change. The disc may be another one if this is another
    /// number, even if the two look alike.
    std::uint64_t changeCount = 0;
    /// Why the drive cannot be used now: one sentence without its full stop. Empty if it can.
    std::string problem;

    /// Returns whether the disc can be burnt, after it was erased if need be.
    bool isWritableDisc() const { return isBlank || isErasable || isOverwritable; }
    /// Compares every member.
    bool operator==(const DiscDrive&) const = default;
};

/// Asks a drive about itself and its disc, and returns what it says, with 0 for `id` and
/// `changeCount`. Takes as long as the drive takes, which may be seconds. Any thread.
QUARNER_EXPORT DiscDrive examineDrive(const DRDevice& drive);

/// Ejects the disc in a drive. Returns an empty text if it was ejected, otherwise the reason, a
/// sentence. Null stands for a drive that is not attached any more. Takes as long as the drive
/// takes. Any thread.
QUARNER_EXPORT std::string ejectDisc(const std::shared_ptr<DRDevice>& drive);

/// That a drive with a `problem` cannot be used and why, as a sentence.
QUARNER_EXPORT std::string textForUnusableDrive(const DiscDrive& drive);

/// The disc in a drive for display: "CD-RW, blank, can be erased", "no disc", "examining the disc",
/// or why the drive cannot be used.
QUARNER_EXPORT std::string textForDisc(const DiscDrive& drive);
/// The same with the free play time: "CD-R, blank, 01:19:57 free".
QUARNER_EXPORT std::string textForDiscAndFreeTime(const DiscDrive& drive);

} // namespace quarner
