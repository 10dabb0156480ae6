// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/Channel.h"

namespace quarner {

/// The bytes of a burn as they come from the library, received ahead on a thread of their own, so
/// that a library that is late for a moment does not make the drive wait. The memory is locked
/// where the system permits it: what is in it is never read back from a disk.
class StreamBuffer {
public:
    static constexpr std::size_t size = std::size_t(4) * 1024 * 1024;

    /// Begins to receive `bytes` bytes. `channel` and `stop` must outlive this object. Throws
    /// `std::bad_alloc`.
    StreamBuffer(const Channel& channel, std::uint64_t bytes, const StopSignal& stop);
    ~StreamBuffer();
    StreamBuffer(const StreamBuffer&) = delete;
    StreamBuffer& operator=(const StreamBuffer&) = delete;

    /// Fills a buffer, waiting for bytes. Throws `BurnFailure` if a stop was requested or if the
    /// library is gone. On one thread.
    void take(std::span<std::byte> buffer);

private:
    void receiveAll(std::uint64_t bytes);
    /// A free part of the memory, after waiting for one; empty if no more is wanted.
    std::span<std::byte> freePart(std::uint64_t left);
    bool waitForBytes(std::unique_lock<std::mutex>& lock);

    const Channel& _channel;
    const StopSignal& _stop;
    std::byte* const _memory;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::size_t _first = 0;  ///< of the bytes that are filled
    std::size_t _filled = 0; ///< their number; they go on at the start of the memory
    bool _isOver = false;    ///< nothing more is received or wanted
    std::thread _receiver;
};

} // namespace quarner
