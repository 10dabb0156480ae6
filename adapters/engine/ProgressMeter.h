// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace quarner {

/// The engine's clock: a steady clock, or a test's own. Called on any thread.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

/// The progress and the speed of one phase of a burn, and when to report them. Used by one thread
/// at a time.
class ProgressMeter {
public:
    /// The least time between two reports, and the time over which the speed is averaged.
    static constexpr std::chrono::milliseconds reportInterval{100};
    static constexpr std::chrono::milliseconds speedWindow{1000};

    /// Begins a phase of `totalBlocks` blocks.
    ProgressMeter(Clock clock, std::uint64_t totalBlocks);

    /// Adds `blocks` finished blocks.
    void advance(std::uint64_t blocks);

    /// Returns the fraction to report now, and assumes that it is reported. Returns `std::nullopt`
    /// if the last report is less than an interval ago, unless the phase has just been completed.
    std::optional<double> fractionToReport();

    /// Blocks per second over the last `speedWindow`; 0 at first.
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
