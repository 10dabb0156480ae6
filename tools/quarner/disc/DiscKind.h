// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace quarner {
class Quarner;
class QuarnerDevice;
} // namespace quarner

namespace quarner::cli {

/// A noun in the number that a count asks for: "track", "tracks".
inline std::string numbered(std::string noun, std::size_t count) {
    return count == 1 ? noun : noun + "s";
}

/// "1 track", "3 tracks"
inline std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + numbered(noun, count);
}

/// The kinds of disc that the program burns.
enum class DiscKind { Audio, Data };

/// All that is different about them. Capacity is counted in seconds of an audio disc and in bytes
/// of a data disc.
struct DiscTraits {
    const char* extension; ///< of an image, in lower case, with its dot: ".cue"
    const char* example;   ///< the name of such an image
    const char* command;   ///< the command that burns it
    const char* oneItem;   ///< what an added file is on it: "track"
    const char* onePause;  ///< said after one item where it has a pause, or empty
    const char* allPauses; ///< the same after several
    const char* titleHelp; ///< what a title does
    const char* excess;    ///< how content is that does not fit: "too long"
    const char* overhead;  ///< said where content does not fit that is not more than the room
    bool tellsTimeLeft;    ///< whether its burner knows how long the burn takes

    std::shared_ptr<Quarner> (*makeBurner)();
    std::uint64_t (*freeCapacity)(const QuarnerDevice& device);
    std::string (*capacityText)(std::uint64_t capacity);
    std::uint64_t (*imageBytes)(std::uint64_t used); ///< how large the image about is

    /// "track" or "tracks", as the count has it.
    std::string items(std::size_t count) const { return numbered(oneItem, count); }
    /// " and its pause", " and their pauses", or nothing where there are none.
    std::string pauses(std::size_t count) const { return count == 1 ? onePause : allPauses; }
};

const DiscTraits& traitsOf(DiscKind kind);

/// Returns the extensions of the files that a burner accepts, each once and in lower case, with
/// `separator` between them: "mp3, m4a".
std::string supportedTypes(Quarner& burner, std::string_view separator);

} // namespace quarner::cli
