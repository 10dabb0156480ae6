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

/// Reads the tracks of a disc ahead of the writer, several at a time on its own threads, in a fixed
/// amount of memory. `next` returns the buffers in the order of the disc; a source's failure is
/// thrown where its buffer would have been returned.
///
/// All tracks share one pool of buffers. Without a limit, later tracks could fill the whole pool
/// while the track being written waits for a free buffer: a deadlock, since only written buffers
/// are recycled. So the last few buffers are reserved for the track being written, which can
/// therefore always make progress. One reading thread reads the tracks in the order of the disc and
/// needs no reserve.
///
class ReadAhead {
public:
    /// Sectors in a buffer.
    static constexpr std::uint32_t sectorsPerBuffer = 256;
    /// 27.6 MiB for an audio disc. All of it is used only if the writer is slower than the reading.
    static constexpr std::size_t buffers = 48;

    /// Starts reading on at most `threads` threads. The sources must outlive this object.
    ReadAhead(const DiscPlan& plan, TrackSources& sources, unsigned threads, std::stop_token stop);
    /// Stops reading. Waits for the reads that are under way.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Returns the next buffer of the current track, waiting for it if necessary. Returns an empty
    /// span at the end of the track, after which the next call continues with the next track, and
    /// after a stop. The span is valid until the next call. Throws what the track's source threw.
    /// Call it on one thread.
    std::span<const std::byte> next();

private:
    struct Buffer {
        SectorBuffer memory;
        std::size_t size = 0;
    };
    struct Track {
        std::uint64_t bytes = 0;
        std::deque<std::unique_ptr<Buffer>> ready;
        bool isRead = false;
        std::exception_ptr failure;
    };

    void startThread();
    void readTracks();
    std::optional<std::size_t> claimTrack();
    void readTrack(std::size_t index);
    void readBuffers(std::size_t index);
    std::unique_ptr<Buffer> takeFree(std::size_t index);
    void deliver(std::size_t index, std::unique_ptr<Buffer> buffer);
    void recycle();

    const std::size_t _bufferSize;
    const std::size_t _reserved;
    TrackSources& _sources;

    std::mutex _mutex;
    std::condition_variable_any _changed;
    std::vector<Track> _tracks;
    std::vector<std::unique_ptr<Buffer>> _free;
    std::size_t _allocated = 0;
    std::size_t _nextToRead = 0;
    std::size_t _nextToWrite = 0;
    std::unique_ptr<Buffer> _given; // used by the burn thread only

    std::stop_source _stop;
    std::optional<std::stop_callback<std::function<void()>>> _stopWithBurn;
    std::vector<std::jthread> _threads;
};

} // namespace quarner
