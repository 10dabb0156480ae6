// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/OverallProgress.h"

#include <algorithm>
#include <cmath>

namespace quarner {
namespace {

using Phase = DiscBurnProgress::Phase;

// A drive reads a disc back in about half the time that it takes to write it.
constexpr double verifyingPerWriting = 0.5;
constexpr double writingShare = 0.64;
constexpr double verifyingShare = writingShare * verifyingPerWriting;
constexpr double preparingShare = 0.01;
constexpr double endOfWriting = preparingShare + writingShare;
constexpr double startOfVerifying = 1.0 - verifyingShare;

double overall(Phase phase, double fraction) {
    switch (phase) {
    case Phase::Preparing:
        return 0;
    case Phase::Writing:
        return preparingShare + writingShare * fraction;
    case Phase::Closing:
    case Phase::Finishing:
        return endOfWriting;
    case Phase::Verifying:
        return startOfVerifying + verifyingShare * fraction;
    }
    return 0;
}

} // namespace

void OverallProgress::enter(Phase phase, Clock::time_point now) {
    if (_hasBegun && phase == _phase)
        return;
    _hasBegun = true;
    _phase = phase;
    _phaseStart = now;
}

/// An estimate from less than a second, or from less than a hundredth of the phase, would jump.
std::optional<double> OverallProgress::secondsLeftInPhase(double fraction,
                                                          Clock::time_point now) const {
    const double elapsed = Seconds(now - _phaseStart).count();
    if (fraction >= 1.0)
        return 0;
    if (elapsed < 1.0 || fraction < 0.01)
        return std::nullopt;
    return elapsed * (1.0 - fraction) / fraction;
}

void OverallProgress::update(DiscBurnProgress& progress, Clock::time_point now) {
    enter(progress.phase, now);
    const bool hasFraction = _phase == Phase::Writing || _phase == Phase::Verifying;
    const double fraction = std::clamp(progress.phaseFraction, 0.0, 1.0);
    _fraction = std::max(_fraction, overall(_phase, fraction));
    progress.fraction = _fraction;

    const std::optional<double> inPhase =
        hasFraction ? secondsLeftInPhase(fraction, now) : std::nullopt;
    std::optional<double> left = inPhase;
    if (_phase == Phase::Writing && inPhase) {
        const double whole = Seconds(now - _phaseStart).count() + *inPhase;
        left = *inPhase + whole * verifyingPerWriting;
    }
    if (inPhase)
        progress.phaseSecondsLeft = static_cast<std::uint64_t>(std::llround(*inPhase));
    if (left) {
        const auto seconds = static_cast<std::uint64_t>(std::llround(*left));
        _secondsLeft = std::min(_secondsLeft.value_or(seconds), seconds);
    }
    progress.secondsLeft = _secondsLeft;
}

} // namespace quarner
