// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// One status record of a burn; an entry that is not given is missing from it.
struct QUARNER_EXPORT BurnRecord {
    std::optional<std::string> state = std::nullopt; ///< a DRStatusState... of DRKeys.h, or any
    std::optional<double> fraction = std::nullopt;   ///< 0.0 to 1.0, below 0 for unknown
    std::optional<double> speed = std::nullopt;      ///< blocks per second
    std::optional<std::int64_t> track = std::nullopt;
    std::optional<std::int64_t> of = std::nullopt;
    std::optional<std::uint32_t> error = std::nullopt; ///< the service's code

    /// The record as the service delivers it.
    Dictionary dictionary() const;
};

/// How a burn plays by itself: a plausible sequence of records from preparing to done.
struct BurnStory {
    double speed = 1800.0; ///< blocks per second
    /// How many progress records each track, and the verification, sends.
    int progressReports = 2;
    /// Whether the disc is read back. Never when the burn's properties say no.
    bool verifies = true;
    /// The fraction of the writing at which the burn fails with `code`.
    std::optional<double> failsAt = std::nullopt;
    /// The state in which the burn fails with `code`, right after its first record.
    std::optional<std::string> failsIn = std::nullopt;
    DRError code = DRError::WriteFailed;
};

/// The records of a story for a layout, in order. The last one, and no other, is Done or Failed.
QUARNER_EXPORT std::vector<BurnRecord> recordsOf(const BurnStory& story, const DRLayout& layout);

} // namespace quarner
