// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "quarner/platform/DRErrors.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// What a compilation takes of the disc in a drive: seconds, pre-gaps included, of an audio CD;
/// bytes of a data CD. The texts are for display: "00:48:10", "402.1 MB".
struct DiscCapacity {
    std::uint64_t used = 0;  ///< by the compilation
    std::uint64_t free = 0;  ///< of `total`; 0 if it does not fit
    std::uint64_t total = 0; ///< what the disc takes; 0 without a disc that can be written
    std::string usedText;    ///< `used` for display, as time or size
    std::string freeText;    ///< `free` for display
    std::string totalText;   ///< `total` for display
    std::string contentText; ///< "2 tracks and their pauses", "1 file"
    /// What is left of a known disc, or what is too much for it: "01:13:13 left", "00:01:47 too
    /// long", "2 tracks too many". Empty without a disc.
    std::string verdict;

    std::size_t count = 0;       ///< tracks of an audio CD, files of a data CD
    std::uint64_t fileBytes = 0; ///< of the files, without the file system of a data CD
    std::string fileBytesText;   ///< `fileBytes` for display
    bool isDiscKnown = false;    ///< whether there is a disc in the drive
    /// False if there is more than the disc takes, or more than 99 tracks. Also false for a data CD
    /// whose file system makes it too large. True if no disc is known.
    bool fits = true;
    /// False while the size of the file system of a data CD is being determined: `used` is then the
    /// size of the files alone. `capacityChanged` reports the result.
    bool isExact = true;
};

/// What stands in the way of a burn.
struct DiscProblem {
    DRError code = DRError::Internal; ///< with which the burn would end
    std::string text;                 ///< what is wrong, as a sentence
    std::string advice;               ///< what the user can do, as a sentence; may be empty

    /// Compares every member.
    bool operator==(const DiscProblem&) const = default;
};

/// Returns what an error code of a burn means (`BurnError::code`, `ImageProblem::code`) and what
/// the user can do about it. Any thread.
QUARNER_EXPORT DiscProblem problemForCode(std::int64_t code);

} // namespace quarner
