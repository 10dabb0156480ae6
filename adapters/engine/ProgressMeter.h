// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

#include "adapters/engine/Clock.h"

namespace quarner {

/// How far one phase of a burn has come, how fast it is, and when that is worth telling. Used by
/// one thread at a time.
class ProgressMeter {
public:
    /// The least time between two reports, and the time over which the speed is measured.
    static constexpr std::chrono::milliseconds reportInterval{100};
    static constexpr std::chrono::milliseconds speedWindow{1000};

    /// A phase of so many blocks begins now.
    ProgressMeter(Clock clock, std::uint64_t totalBlocks);

    /// So many more blocks are done.
    void advance(std::uint64_t blocks);

    /// The fraction to report now: nothing when the last report was given less than an interval
    /// ago, unless the phase has just been completed. Whoever asks reports it.
    std::optional<double> fractionToReport();

    /// Blocks per second over the latest window; 0 before anything is done.
    double speed() const;

private:
    struct Mark {
        std::chrono::steady_clock::time_point time;
        std::uint64_t done;
    };

    const Clock _clock;
    const std::uint64_t _total;
    std::uint64_t _done = 0;
    std::deque<Mark> _marks; // the start of the window first
    Mark _latest;
    std::optional<std::chrono::steady_clock::time_point> _reported;
    bool _isEndReported = false;
};

} // namespace quarner
