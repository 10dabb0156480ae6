// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <thread>
#include <vector>

#include "adapters/engine/DiscPlan.h"
#include "adapters/engine/SectorBuffer.h"
#include "adapters/engine/TrackSource.h"

namespace quarner {

/// Reads the tracks of a disc ahead of the writer, several at a time on threads of their own, in
/// a fixed amount of memory. The pieces come out in the order of the disc; a failure comes out
/// where the piece would have come.
///
/// The memory is one pool of pieces for all tracks. A track that is not yet being written may not
/// take the last few, so that the one that is always gets on.
class ReadAhead {
public:
    /// Sectors in a piece.
    static constexpr std::uint32_t sectorsPerPiece = 256;
    /// 27.6 MiB for an audio disc, all of it in use only when the writer is slower.
    static constexpr std::size_t pieces = 48;

    /// Starts reading with so many threads at most. The sources must outlive this object.
    ReadAhead(const DiscPlan& plan, TrackSources& sources, unsigned threads, std::stop_token stop);
    /// Stops reading; returns when the pieces under way are read.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// The next piece of the track under way, waiting for it; empty at the end of the track, after
    /// which the next call begins with the next track, and when the reading was stopped. Valid
    /// until the next call. Throws what the track's source threw. On one thread.
    std::span<const std::byte> next();

private:
    struct Piece {
        SectorBuffer buffer;
        std::size_t size = 0;
    };
    struct Track {
        std::uint64_t bytes = 0;
        std::deque<std::unique_ptr<Piece>> ready;
        bool isRead = false;
        std::exception_ptr failure;
    };

    void startThread();
    void readTracks();
    std::optional<std::size_t> claimTrack();
    void readTrack(std::size_t index);
    void readPieces(std::size_t index);
    std::unique_ptr<Piece> takeFree(std::size_t index);
    void deliver(std::size_t index, std::unique_ptr<Piece> piece);
    void recycle();

    const std::size_t _pieceSize;
    const std::size_t _kept;
    TrackSources& _sources;

    std::mutex _mutex;
    std::condition_variable_any _changed;
    std::vector<Track> _tracks;
    std::vector<std::unique_ptr<Piece>> _free;
    std::size_t _made = 0;
    std::size_t _nextToRead = 0;
    std::size_t _nextToWrite = 0;
    std::unique_ptr<Piece> _given; // of the writer's thread alone

    std::stop_source _stop;
    std::optional<std::stop_callback<std::function<void()>>> _stopWithBurn;
    std::vector<std::jthread> _threads;
};

} // namespace quarner
