// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner {

/// What a drive knows of the disc in it. Blocks are sectors: 2048 bytes of data, 2352 of sound.
struct DiscFacts {
    enum class State {
        None,       ///< no disc
        NotReady,   ///< a disc is being loaded or examined
        Blank,      ///< nothing on it
        Appendable, ///< something on it, and it takes another session
        Closed,     ///< something on it, and it takes no more
        Unsuitable, ///< neither readable nor writable here
    };

    State state = State::None;
    std::string type;            ///< one of the media types of DRKeys.h
    bool isErasable = false;     ///< can be blanked
    bool isOverwritable = false; ///< is written anywhere, again and again, without blanking
    std::uint64_t usedBlocks = 0;
    /// What a burn can use: of an erasable disc the whole, as it is blanked first.
    std::uint64_t freeBlocks = 0;
    std::vector<std::int64_t> speeds; ///< of writing, in blocks per second, ascending

    bool isPresent() const { return state != State::None && state != State::NotReady; }
};

class GrabbedDrive;

/// Asks an open drive. What it does not tell stays 0 or empty.
DiscFacts readDiscFacts(const GrabbedDrive& grabbed);

} // namespace quarner
