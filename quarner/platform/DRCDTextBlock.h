// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "quarner/platform/Value.h"

namespace quarner {

/// The number of the encoding ISO/IEC 8859-1 (Latin-1), which a CD-Text block is made with.
inline constexpr std::uint32_t isoLatin1StringEncoding = 5;

/// The texts of a disc and of its tracks in one language.
class DRCDTextBlock {
public:
    /// A block without texts. An empty language stands for one that is not known.
    DRCDTextBlock(std::string language, std::uint32_t encoding)
        : _language(std::move(language)), _encoding(encoding) {}

    /// The language as given.
    const std::string& language() const { return _language; }
    /// The encoding number as given.
    std::uint32_t encoding() const { return _encoding; }

    /// `setObject:forKey:ofTrack:`: stores a value under a key for a track. Track 0 is the disc.
    void setObject(Value value, std::string_view forKey, std::int64_t ofTrack) {
        _tracks[ofTrack].insert_or_assign(std::string(forKey), std::move(value));
    }

    /// Returns the value stored under a key for a track, or an empty value if there is none.
    const Value& object(std::string_view forKey, std::int64_t ofTrack) const {
        static const Dictionary none;
        const auto track = _tracks.find(ofTrack);
        return valueFor(track == _tracks.end() ? none : track->second, forKey);
    }

private:
    std::string _language;
    std::uint32_t _encoding;
    std::map<std::int64_t, Dictionary> _tracks;
};

} // namespace quarner
