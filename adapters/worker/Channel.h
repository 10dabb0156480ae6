// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "adapters/posix/FileDescriptor.h"
#include "adapters/worker/Message.h"

namespace quarner {

/// One end of the connection between the library and a worker: a socket for messages, each of which
/// arrives whole, and a stream for bytes. Neither side trusts the other: what is malformed counts
/// as the end of the connection.
class Channel {
public:
    using Clock = std::chrono::steady_clock;
    enum class Result { Done, TimedOut, Closed };
    enum class Sent { Done, TimedOut, Closed, TooLarge };
    /// The descriptors of a worker's end, as it is started with them.
    static constexpr int messageDescriptor = 3;
    static constexpr int streamDescriptor = 4;

    /// Takes two connected sockets: of type SOCK_SEQPACKET for the messages, SOCK_STREAM for the
    /// bytes.
    Channel(FileDescriptor messages, FileDescriptor stream);

    /// Sends a message. Waits until `end` while the other side takes none, by default without end.
    /// Any thread.
    Sent send(const Message& message, Clock::time_point end = Clock::time_point::max()) const;

    /// Waits for a message, at most until `end`. On one thread at a time.
    Result receive(Message& message, Clock::time_point end) const;

    /// Sends a first part of the bytes to the stream, and removes it from them. Also returns,
    /// without `Done`, when a message has come. On one thread at a time.
    Result give(std::span<const std::byte>& bytes, Clock::time_point end) const;

    /// Fills a first part of the buffer from the stream, and removes it from the buffer. On one
    /// thread at a time.
    Result take(std::span<std::byte>& buffer, Clock::time_point end) const;

    /// Returns `count` bytes of the stream; `std::nullopt` if they do not come until `end`. The
    /// memory that it uses grows with what has come. On one thread at a time.
    std::optional<std::vector<std::byte>> takeAll(std::uint64_t count, Clock::time_point end) const;

    /// Ends the connection for both sides; every wait returns. Any thread.
    void shutDown() const;

private:
    FileDescriptor _messages;
    FileDescriptor _stream;
};

} // namespace quarner
