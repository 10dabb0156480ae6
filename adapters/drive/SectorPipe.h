// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <span>
#include <stop_token>

namespace quarner {

/// Passes bytes from one thread to another without copying them into a buffer: `give` lends the
/// bytes until `take` has copied them.
///
/// The pipe must outlive every call. Bytes are taken in the order in which they were given. The
/// giver may destroy the bytes as soon as `give` has returned, also if it returned false: `take`
/// copies them under the pipe's lock and never uses them afterwards. After `close`, `give` returns
/// false and `take` returns what it has.
class SectorPipe {
public:
    /// The interval at which a waiting `give` calls `isTaken`.
    static constexpr std::chrono::milliseconds checkInterval{50};

    /// Waits until all bytes are taken and returns true. Returns false if the pipe is closed, if a
    /// stop is requested, or if `isTaken`, which is called repeatedly, returns false. On one
    /// thread.
    bool give(std::span<const std::byte> bytes, const std::stop_token& stop,
              const std::function<bool()>& isTaken);

    /// Fills the buffer, waiting for bytes. Returns the number of bytes, less than the buffer's
    /// size only after `close`. On one other thread.
    std::size_t take(std::span<std::byte> buffer);

    /// Wakes both threads; no call waits any more. Any thread.
    void close();

private:
    std::mutex _mutex;
    std::condition_variable_any _changed;
    std::span<const std::byte> _lent;
    bool _isClosed = false;
};

} // namespace quarner
