// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace quarner {

/// The content of one track. Used by one thread at a time. Every operation throws `BurnFailure` on
/// an error.
class TrackSource {
public:
    TrackSource() = default;
    virtual ~TrackSource();
    TrackSource(const TrackSource&) = delete;
    TrackSource& operator=(const TrackSource&) = delete;

    /// Throws if a file of the track is gone, or was changed since the track was made. Called
    /// before anything is written, and again after the track was read.
    virtual void check() = 0;

    /// Fills the buffer with the next bytes of the track. The calls together read exactly the bytes
    /// that the plan gives to the track.
    virtual void read(std::span<std::byte> buffer) = 0;

    /// Frees what reading needs. Nothing is read afterwards.
    virtual void close() = 0;
};

using TrackSources = std::vector<std::unique_ptr<TrackSource>>;

} // namespace quarner
