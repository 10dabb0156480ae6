// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/front/QuarnDelegate.h"
#include "quarner/platform/DRErrors.h"

namespace quarner {

/// How far a burn is.
struct DiscBurnProgress {
    /// The phases, in their order.
    enum class Phase {
        Preparing, ///< the drive and the disc are made ready
        Writing,   ///< the tracks are written
        Closing,   ///< all tracks were written, and the session was closed
        Finishing, ///< the disc is completed
        Verifying  ///< the disc is read back and compared
    };

    Phase phase = Phase::Preparing;                ///< the one that runs
    std::int64_t track = 0;                        ///< from 1, while writing; 0 otherwise
    std::int64_t trackCount = 0;                   ///< 0 unless writing
    double phaseFraction = 0;                      ///< of the phase, 0.0 to 1.0
    std::optional<std::uint64_t> phaseSecondsLeft; ///< in the phase, if that can be estimated
    double fraction = 0; ///< of the whole burn, verification included; never falls
    std::optional<std::uint64_t> secondsLeft; ///< of the whole burn; never rises once it is known
    std::string timeLeftText; ///< `secondsLeft` as "1:07"; empty while it is not known
    std::string text;         ///< "Writing track 2 of 9"
};

/// How a burn ended.
struct DiscBurnEnd {
    /// How a burn can end.
    enum class Outcome {
        Done,     ///< written and verified
        Canceled, ///< by `cancelBurn`
        Failed    ///< `code` says why
    };

    Outcome outcome = Outcome::Done;  ///< how this one ended
    std::optional<DRError> code = {}; ///< of a burn that failed
    std::string text = {};            ///< what happened, as a sentence
    BurnErrorInfo info = {}; ///< the file, the sector or the drive's words that it is about
    std::string advice = {}; ///< what the user can do, as a sentence; may be empty
};

} // namespace quarner
