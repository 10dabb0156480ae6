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
/// Any thread.
class LengthCache {
public:
    explicit LengthCache(std::size_t capacity) : _capacity(capacity) {}

    /// The length kept for a file, if the file then had this stamp.
    std::optional<PCMLength> find(const std::string& path, const FileStamp& stamp) const;

    /// Keeps a length; the oldest one makes room for it when the cache is full.
    void keep(const std::string& path, const FileStamp& stamp, const PCMLength& length);

private:
    struct Entry {
        FileStamp stamp;
        PCMLength length;
    };

    const std::size_t _capacity;
    mutable std::mutex _mutex;
    std::map<std::string, Entry> _entries;
    std::deque<std::string> _order; // the paths of the entries, oldest first
};

} // namespace quarner
