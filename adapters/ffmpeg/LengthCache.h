// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "adapters/ffmpeg/PathCache.h"
#include "quarner/platform/FileStamp.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// A cache of the lengths of the files measured last, each valid until the file changes. Any
/// thread.
class LengthCache {
public:
    explicit LengthCache(std::size_t capacity) : _entries(capacity) {}

    /// What a file was measured as: nothing if it holds no sound.
    using Length = std::optional<PCMLength>;

    /// What is kept for a file, if the file then had this stamp.
    std::optional<Length> find(const std::string& path, const FileStamp& stamp) const {
        const auto entry = _entries.find(path);
        return entry && entry->stamp == stamp ? std::optional<Length>(entry->length) : std::nullopt;
    }

    /// Keeps a length. If the cache is full, the oldest one is removed.
    void keep(const std::string& path, const FileStamp& stamp, const Length& length) {
        _entries.keep(path, {stamp, length});
    }

private:
    struct Entry {
        FileStamp stamp;
        Length length;
    };

    PathCache<Entry> _entries;
};

} // namespace quarner
