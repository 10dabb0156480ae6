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

/// Hands bytes from a thread that has them to one that asks for them, without keeping any: what is
/// given is lent until it has been taken.
class SectorPipe {
public:
    /// How often a giver who waits looks whether anybody still takes.
    static constexpr std::chrono::milliseconds lookInterval{50};

    /// Returns when all bytes have been taken: true. False when the pipe is closed, the giver is
    /// asked to stop, or `isTaken` answers false, which is called now and then while it waits: then
    /// the bytes are not looked at any more. On one thread.
    bool give(std::span<const std::byte> bytes, const std::stop_token& stop,
              const std::function<bool()>& isTaken);

    /// Fills the buffer, waiting for bytes. Answers how many there are: fewer than asked only after
    /// `close`. On one other thread.
    std::size_t take(std::span<std::byte> buffer);

    /// Nobody waits here from now on. Any thread.
    void close();

private:
    std::mutex _mutex;
    std::condition_variable_any _changed;
    std::span<const std::byte> _lent;
    bool _isClosed = false;
};

} // namespace quarner
