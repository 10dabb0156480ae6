// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace quarner {

/// A cache of values of the paths that were kept last. Any thread.
template <typename Value>
class PathCache {
public:
    explicit PathCache(std::size_t capacity) : _capacity(capacity) {}

    /// Returns the value that is kept for a path.
    std::optional<Value> find(const std::string& path) const {
        const std::lock_guard lock(_mutex);
        const auto found = _values.find(path);
        return found == _values.end() ? std::nullopt : std::optional<Value>(found->second);
    }

    /// Keeps a value in place of the path's old one. If the cache is full, the oldest is removed.
    void keep(const std::string& path, Value value) {
        const std::lock_guard lock(_mutex);
        if (_values.insert_or_assign(path, std::move(value)).second)
            _order.push_back(path);
        if (_order.size() > _capacity) {
            _values.erase(_order.front());
            _order.pop_front();
        }
    }

private:
    const std::size_t _capacity;
    mutable std::mutex _mutex;
    std::map<std::string, Value> _values;
    std::deque<std::string> _order; // the paths, oldest first
};

} // namespace quarner
