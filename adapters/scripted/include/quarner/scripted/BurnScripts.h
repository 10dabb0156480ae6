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

/// One status record of a burn. An entry without a value is left out of it.
struct QUARNER_EXPORT BurnRecord {
    std::optional<std::string> state = std::nullopt;   ///< a DRStatusState... of DRKeys.h, or any
    std::optional<double> fraction = std::nullopt;     ///< 0.0 to 1.0, below 0 for unknown
    std::optional<double> speed = std::nullopt;        ///< blocks per second
    std::optional<std::int64_t> track = std::nullopt;  ///< the current track, from 1
    std::optional<std::int64_t> of = std::nullopt;     ///< the number of tracks
    std::optional<std::uint32_t> error = std::nullopt; ///< the service's code
    BurnErrorInfo errorInfo = {};                      ///< only with an error

    /// The record as the recording service delivers it.
    Dictionary dictionary() const;
};

/// The records that a burn sends by itself: a plausible sequence from Preparing to Done.
struct BurnScript {
    double speed = 1800.0; ///< blocks per second
    /// The number of progress records of each track and of the verification.
    int progressReports = 2;
    /// Whether the disc is read back. Ignored if the burn's properties switch verification off.
    bool verifies = true;
    /// The fraction of the writing at which the burn fails with `code`.
    std::optional<double> failsAt = std::nullopt;
    /// The burn fails with `code` right after the first record with this state.
    std::optional<std::string> failsIn = std::nullopt;
    DRError code = DRError::WriteFailed; ///< of a burn that fails
    BurnErrorInfo errorInfo = {};        ///< of a burn that fails
};

/// Returns the records that a script sends for a layout, in order. The last one, and no other, is
/// Done or Failed.
QUARNER_EXPORT std::vector<BurnRecord> recordsOf(const BurnScript& script, const DRLayout& layout);

} // namespace quarner
