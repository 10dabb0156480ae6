// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "quarner/platform/FileStamp.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// A cache of the lengths of the files measured last, each valid until the file changes. Any
/// thread.
class LengthCache {
public:
    explicit LengthCache(std::size_t capacity) : _capacity(capacity) {}

    /// What a file was measured as: nothing if it holds no sound.
    using Length = std::optional<PCMLength>;

    /// What is kept for a file, if the file then had this stamp.
    std::optional<Length> find(const std::string& path, const FileStamp& stamp) const;

    /// Keeps a length. If the cache is full, the oldest one is removed.
    void keep(const std::string& path, const FileStamp& stamp, const Length& length);

private:
    struct Entry {
        FileStamp stamp;
        Length length;
    };

    const std::size_t _capacity;
    mutable std::mutex _mutex;
    std::map<std::string, Entry> _entries;
    std::deque<std::string> _order; // the paths of the entries, oldest first
};

} // namespace quarner
