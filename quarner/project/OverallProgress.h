// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <optional>

#include "quarner/project/DiscBurn.h"

namespace quarner {

/// Combines the phases of a burn to one progress. Writing and verifying have fixed shares of the
/// whole; the times are estimated from how long the phases have taken so far. For one thread.
class OverallProgress {
public:
    using Clock = std::chrono::steady_clock;
    using Phase = DiscBurnProgress::Phase;

    /// Takes the state of a burn at a time, which must not be before that of the last call, and
    /// fills in `fraction`, `phaseSecondsLeft` and `secondsLeft` of `progress`.
    void update(DiscBurnProgress& progress, Clock::time_point now);

private:
    using Seconds = std::chrono::duration<double>;

    void enter(Phase phase, Clock::time_point now);
    std::optional<double> secondsLeftInPhase(double fraction, Clock::time_point now) const;

    Phase _phase = Phase::Preparing;
    Clock::time_point _phaseStart;
    bool _hasBegun = false;
    double _fraction = 0;
    std::optional<std::uint64_t> _secondsLeft;
};

} // namespace quarner
