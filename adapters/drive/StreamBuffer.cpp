// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/StreamBuffer.h"

#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>

#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds checkInterval{50};

std::byte* lockedMemory(std::size_t size) {
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    mlock(memory, size); // beyond what the system permits it stays as it is
    return static_cast<std::byte*>(memory);
}

} // namespace

StreamBuffer::StreamBuffer(const Channel& channel, std::uint64_t bytes, const StopSignal& stop)
    : _channel(channel), _stop(stop), _memory(lockedMemory(size)),
      _receiver([this, bytes] { receiveAll(bytes); }) {}

StreamBuffer::~StreamBuffer() {
    {
        const std::lock_guard lock(_mutex);
        _isOver = true;
    }
    _changed.notify_all();
    _receiver.join();
    munmap(_memory, size);
}

void StreamBuffer::receiveAll(std::uint64_t bytes) {
    bool isClosed = false;
    while (bytes > 0 && !isClosed) {
        const std::span<std::byte> part = freePart(bytes);
        if (part.empty())
            break;
        std::span<std::byte> left = part;
        isClosed =
            _channel.take(left, Channel::Clock::now() + checkInterval) == Channel::Result::Closed;
        const std::lock_guard lock(_mutex);
        _filled += part.size() - left.size();
        bytes -= part.size() - left.size();
        _changed.notify_all();
    }
    const std::lock_guard lock(_mutex);
    _isOver = true;
    _changed.notify_all();
}

std::span<std::byte> StreamBuffer::freePart(std::uint64_t left) {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return _filled < size || _isOver; });
    if (_isOver)
        return {};
    const std::size_t begin = (_first + _filled) % size;
    const std::size_t end = begin < _first ? _first : size;
    return {_memory + begin, std::size_t(std::min<std::uint64_t>(end - begin, left))};
}

void StreamBuffer::take(std::span<std::byte> buffer) {
    std::unique_lock lock(_mutex);
    while (!buffer.empty()) {
        if (!waitForBytes(lock))
            throw BurnFailure(DRError::UserCanceled, "the library is gone");
        const std::size_t part = std::min({_filled, size - _first, buffer.size()});
        std::memcpy(buffer.data(), _memory + _first, part);
        buffer = buffer.subspan(part);
        _first = (_first + part) % size;
        _filled -= part;
        _changed.notify_all();
    }
}

/// Returns false if none will come.
bool StreamBuffer::waitForBytes(std::unique_lock<std::mutex>& lock) {
    while (_filled == 0 && !_isOver) {
        _changed.wait_for(lock, checkInterval);
        _stop.throwIfRequested();
    }
    return _filled > 0;
}

} // namespace quarner
