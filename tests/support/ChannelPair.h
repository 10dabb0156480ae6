// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/worker/Channel.h"

namespace quarner {

/// The other end of a channel, without the channel's manners: it may send anything. It never waits:
/// what the sockets do not take is lost.
class RawEnd {
public:
    RawEnd(FileDescriptor messages, FileDescriptor stream)
        : _messages(std::move(messages)), _stream(std::move(stream)) {}

    bool send(const Message& message) const { return sendPacket(encoded(message)); }
    bool sendPacket(std::span<const std::byte> bytes) const { return send(_messages, bytes); }
    bool sendText(std::string_view text) const {
        return sendPacket(std::as_bytes(std::span(text)));
    }
    bool sendStream(std::span<const std::byte> bytes) const { return send(_stream, bytes); }
    /// Takes what has come. Returns the number of bytes.
    std::size_t drainMessages() const { return drain(_messages); }
    std::size_t drainStream() const { return drain(_stream); }
    /// Sends no more; still receives.
    void endMessages() const { shutdown(_messages.number(), SHUT_WR); }
    void endStream() const { shutdown(_stream.number(), SHUT_WR); }
    /// This end with the channel's manners.
    Channel asChannel() && { return {std::move(_messages), std::move(_stream)}; }
    void closeMessages() { _messages = FileDescriptor(); }
    void closeStream() { _stream = FileDescriptor(); }

private:
    static bool send(const FileDescriptor& socket, std::span<const std::byte> bytes) {
        return ::send(socket.number(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL) ==
               ssize_t(bytes.size());
    }
    static std::size_t drain(const FileDescriptor& socket) {
        std::array<std::byte, 65536> buffer;
        std::size_t sum = 0;
        ssize_t count = 0;
        while ((count = recv(socket.number(), buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0)
            sum += std::size_t(count);
        return sum;
    }

    FileDescriptor _messages;
    FileDescriptor _stream;
};

/// Both ends of a connection in one process.
struct ChannelPair {
    ChannelPair() : ChannelPair(connection(SOCK_SEQPACKET), connection(SOCK_STREAM)) {}

    Channel channel;
    RawEnd other;

private:
    using Ends = std::pair<FileDescriptor, FileDescriptor>;
    ChannelPair(Ends messages, Ends stream)
        : channel(std::move(messages.first), std::move(stream.first)),
          other(std::move(messages.second), std::move(stream.second)) {}
    static Ends connection(int type) {
        std::array<int, 2> ends = {-1, -1};
        if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw std::system_error(errno, std::generic_category());
        return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    }
};

} // namespace quarner
