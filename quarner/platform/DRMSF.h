// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

namespace quarner {

/// A position or a length on a CD in minutes, seconds and frames: 75 frames to a second, 60
/// seconds to a minute (Red Book, IEC 60908). One frame is one sector. Kept as an exact count of
/// frames in 32 bits; sums wrap around at 2^32 frames (some 662 days).
class DRMSF {
public:
    /// Frames in a second (Red Book).
    static constexpr std::uint32_t framesPerSecond = 75;
    /// Frames in a minute.
    static constexpr std::uint32_t framesPerMinute = 4500;

    /// `msf`: the time zero.
    static constexpr DRMSF msf() { return DRMSF(0); }

    /// `msfWithFrames:`: a time of `frames` frames.
    static constexpr DRMSF msfWithFrames(std::uint32_t frames) { return DRMSF(frames); }

    /// `msfByAdding:`: the sum of this time and another, exact to the frame.
    constexpr DRMSF msfByAdding(DRMSF other) const { return DRMSF(_frames + other._frames); }

    /// Whole minutes; may be more than 99.
    constexpr std::uint32_t minutes() const { return _frames / framesPerMinute; }
    /// The whole seconds of the last, incomplete minute: 0 to 59.
    constexpr std::uint32_t seconds() const { return _frames / framesPerSecond % 60; }

    /// The whole length in frames.
    constexpr std::uint32_t totalFrames() const { return _frames; }

    /// minutes × 60 + seconds; the frames of the last, incomplete second are dropped.
    constexpr std::uint32_t wholeSeconds() const { return minutes() * 60 + seconds(); }

    /// Equal to the frame.
    constexpr bool operator==(const DRMSF&) const = default;

private:
    explicit constexpr DRMSF(std::uint32_t frames) : _frames(frames) {}

    std::uint32_t _frames;
};

} // namespace quarner
