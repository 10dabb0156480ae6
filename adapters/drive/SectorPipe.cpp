// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SectorPipe.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace quarner {

bool SectorPipe::give(std::span<const std::byte> bytes, const std::stop_token& stop,
                      const std::function<bool()>& isTaken) {
    std::unique_lock lock(_mutex);
    _lent = bytes;
    _changed.notify_all();
    const auto isSettled = [&] { return _lent.empty() || _isClosed; };
    while (!_changed.wait_for(lock, stop, checkInterval, isSettled)) {
        lock.unlock();
        const bool goesOn = !stop.stop_requested() && isTaken();
        lock.lock();
        if (!goesOn)
            break;
    }
    const bool isAllTaken = _lent.empty();
    _lent = {};
    return isAllTaken;
}

std::size_t SectorPipe::take(std::span<std::byte> buffer) {
    std::size_t filled = 0;
    std::unique_lock lock(_mutex);
    while (filled < buffer.size()) {
        _changed.wait(lock, [&] { return !_lent.empty() || _isClosed; });
        if (_isClosed)
            break;
        const std::size_t part = std::min(_lent.size(), buffer.size() - filled);
        std::memcpy(buffer.data() + filled, _lent.data(), part);
        filled += part;
        _lent = _lent.subspan(part);
        if (_lent.empty())
            _changed.notify_all();
    }
    return filled;
}

void SectorPipe::close() {
    const std::lock_guard lock(_mutex);
    _isClosed = true;
    _changed.notify_all();
}

} // namespace quarner
