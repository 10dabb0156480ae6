// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/Channel.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>
#include <vector>

namespace quarner {
namespace {

using Clock = Channel::Clock;
using Result = Channel::Result;

int millisecondsUntil(Clock::time_point end) {
    constexpr std::chrono::hours most{1};
    const auto left = std::clamp<Clock::duration>(end - Clock::now(), {}, most);
    return int(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

/// Waits for one of the events. What happened is then in `waiting`.
Result wait(std::span<pollfd> waiting, Clock::time_point end) {
    while (true) {
        const int ready = poll(waiting.data(), waiting.size(), millisecondsUntil(end));
        if (ready > 0)
            return Result::Done;
        if (ready < 0 && errno != EINTR)
            return Result::Closed;
        if (Clock::now() >= end)
            return Result::TimedOut;
    }
}

bool isTemporary(int error) { return error == EAGAIN || error == EINTR; }

} // namespace

Channel::Channel(FileDescriptor messages, FileDescriptor stream)
    : _messages(std::move(messages)), _stream(std::move(stream)) {}

Channel::Sent Channel::send(const Message& message, Clock::time_point end) const {
    const std::vector<std::byte> bytes = encoded(message);
    if (bytes.size() > mostMessageBytes)
        return Sent::TooLarge;
    constexpr int flags = MSG_NOSIGNAL | MSG_DONTWAIT;
    while (::send(_messages.number(), bytes.data(), bytes.size(), flags) < 0) {
        std::array<pollfd, 1> waiting = {{{_messages.number(), POLLOUT, 0}}};
        if (!isTemporary(errno))
            return Sent::Closed;
        if (const Result result = wait(waiting, end); result != Result::Done)
            return result == Result::TimedOut ? Sent::TimedOut : Sent::Closed;
        if (Clock::now() >= end)
            return Sent::TimedOut;
    }
    return Sent::Done;
}

Channel::Result Channel::receive(Message& message, Clock::time_point end) const {
    std::array<pollfd, 1> waiting = {{{_messages.number(), POLLIN, 0}}};
    if (const Result result = wait(waiting, end); result != Result::Done)
        return result;
    std::vector<std::byte> bytes(mostMessageBytes);
    const ssize_t count =
        recv(_messages.number(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (count < 0 && isTemporary(errno))
        return Result::TimedOut;
    if (count <= 0 || std::size_t(count) > bytes.size())
        return Result::Closed;
    std::optional<Message> found = decoded(std::span(bytes).first(std::size_t(count)));
    if (!found)
        return Result::Closed;
    message = std::move(*found);
    return Result::Done;
}

Channel::Result Channel::give(std::span<const std::byte>& bytes, Clock::time_point end) const {
    std::array<pollfd, 2> waiting = {
        {{_stream.number(), POLLOUT, 0}, {_messages.number(), POLLIN, 0}}};
    if (const Result result = wait(waiting, end); result != Result::Done)
        return result;
    if (waiting[1].revents != 0)
        return Result::TimedOut;
    const ssize_t count =
        ::send(_stream.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0)
        return isTemporary(errno) ? Result::TimedOut : Result::Closed;
    bytes = bytes.subspan(std::size_t(count));
    return Result::Done;
}

Channel::Result Channel::take(std::span<std::byte>& buffer, Clock::time_point end) const {
    std::array<pollfd, 1> waiting = {{{_stream.number(), POLLIN, 0}}};
    if (const Result result = wait(waiting, end); result != Result::Done)
        return result;
    const ssize_t count = recv(_stream.number(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count < 0 && isTemporary(errno))
        return Result::TimedOut;
    if (count <= 0)
        return Result::Closed;
    buffer = buffer.subspan(std::size_t(count));
    return Result::Done;
}

std::optional<std::vector<std::byte>> Channel::takeAll(std::uint64_t count,
                                                       Clock::time_point end) const {
    constexpr std::uint64_t step = std::uint64_t(64) * 1024;
    std::vector<std::byte> bytes;
    while (bytes.size() < count) {
        const std::size_t start = bytes.size();
        bytes.resize(start + std::size_t(std::min(step, count - start)));
        for (std::span<std::byte> left = std::span(bytes).subspan(start); !left.empty();)
            if (take(left, end) != Result::Done)
                return std::nullopt;
    }
    return bytes;
}

void Channel::shutDown() const {
    shutdown(_messages.number(), SHUT_RDWR);
    shutdown(_stream.number(), SHUT_RDWR);
}

} // namespace quarner
