// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/LengthCache.h"

namespace quarner {

std::optional<LengthCache::Length> LengthCache::find(const std::string& path,
                                                     const FileStamp& stamp) const {
    const std::lock_guard lock(_mutex);
    const auto found = _entries.find(path);
    if (found == _entries.end() || found->second.stamp != stamp)
        return std::nullopt;
    return found->second.length;
}

void LengthCache::keep(const std::string& path, const FileStamp& stamp, const Length& length) {
    const std::lock_guard lock(_mutex);
    if (_entries.insert_or_assign(path, Entry{stamp, length}).second)
        _order.push_back(path);
    if (_order.size() > _capacity) {
        _entries.erase(_order.front());
        _order.pop_front();
    }
}

} // namespace quarner
