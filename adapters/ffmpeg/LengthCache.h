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

/// The lengths of the files that were measured last, each for as long as the file stays as it was.
/// That a file has none is kept too, so that it is not read again to find out. Any thread.
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
