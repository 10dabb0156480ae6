// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace quarner {

/// The content of one track. Used by one thread at a time; every operation throws `BurnFailure`.
class TrackSource {
public:
    TrackSource() = default;
    virtual ~TrackSource();
    TrackSource(const TrackSource&) = delete;
    TrackSource& operator=(const TrackSource&) = delete;

    /// Fails when what the track is made from is gone or no longer what it was when the track was
    /// made. Called before anything is written, and again after the track was read.
    virtual void check() = 0;

    /// Fills the buffer with the next bytes of the track. All calls together ask for exactly the
    /// bytes that the plan gives to the track.
    virtual void read(std::span<std::byte> buffer) = 0;

    /// Lets go of what reading needs. Nothing is read afterwards.
    virtual void close() = 0;
};

using TrackSources = std::vector<std::unique_ptr<TrackSource>>;

} // namespace quarner
