// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner {

/// The properties of the disc in a drive. Blocks are sectors: 2048 bytes of data, 2352 of audio.
struct DiscFacts {
    enum class State {
        None,       ///< no disc
        NotReady,   ///< a disc is being loaded or examined
        Blank,      ///< nothing on it
        Appendable, ///< not empty, takes another session
        Closed,     ///< not empty, takes no further session
        Unsuitable, ///< neither readable nor writable here
    };

    State state = State::None;
    std::string type;            ///< one of the media types of DRKeys.h
    bool isErasable = false;     ///< can be blanked
    bool isOverwritable = false; ///< can be overwritten anywhere without blanking
    std::uint64_t usedBlocks = 0;
    /// The blocks that a burn can use: all of an erasable disc, which is blanked first.
    std::uint64_t freeBlocks = 0;
    std::vector<std::int64_t> speeds; ///< write speeds in blocks per second

    bool isPresent() const { return state != State::None && state != State::NotReady; }
};

} // namespace quarner
