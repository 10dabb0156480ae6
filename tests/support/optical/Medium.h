// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace quarner {

/// The length of the silence before a track. Sectors before sector 0, the first one that a recorder
/// is sent, are the pre-gap of the first track.
constexpr std::uint32_t sectorsOfPreGap = 150;

/// A track on a disc, in sectors.
struct MediumTrack {
    unsigned number = 1;
    unsigned session = 1;
    std::int32_t start = 0;   ///< of index 1
    std::uint32_t preGap = 0; ///< index 0: the sectors right before `start`
    std::uint32_t length = 0; ///< from `start` on
    bool isAudio = false;     ///< sectors of 2352 bytes of sound, otherwise 2048 bytes of data
    std::uint32_t runOut = 0; ///< the last sectors of `length`, which are unreadable

    std::int32_t end() const { return start + static_cast<std::int32_t>(length); }
    std::size_t sectorSize() const { return isAudio ? 2352 : 2048; }
};

/// A disc: its kind, and everything that was written to it. A plain value.
struct Medium {
    enum class Kind {
        CDR,
        CDRW,
        CDROM,
        DVDR,
        Foreign ///< of the `profile`; the recorder knows only the size of its content
    };
    enum class State {
        Blank,
        Appendable, ///< takes a further session
        Closed,
        Incomplete ///< a session was begun and is not closed
    };

    Kind kind = Kind::CDR;
    std::uint16_t profile = 0; ///< of a foreign disc: its number among the kinds of discs (MMC)
    std::uint32_t capacity = 359'847; ///< sectors for the user
    State state = State::Blank;
    unsigned sessions = 0; ///< the closed ones
    std::vector<MediumTrack> tracks;
    /// Whether the drive can read the disc's capacity from the lead-in.
    bool hasPreGroove = true;
    /// The content of each written sector: 2352 or 2048 bytes. A missing one reads as zeros.
    std::map<std::int32_t, std::vector<std::byte>> sectors;
    /// The cue sheet of the last session written session-at-once, as sent: eight bytes per entry.
    std::vector<std::uint8_t> cueSheet;

    static Medium blankCDR(std::uint32_t capacity = 359'847);
    static Medium blankCDRW(std::uint32_t capacity = 359'847);
    static Medium blankDVD();
    /// Returns a closed disc that is not a CD, with `length` blocks of data.
    static Medium foreign(std::uint16_t profile, std::uint32_t length);
    /// Returns a closed disc with tracks of these lengths. It reads as zeros.
    static Medium audioCD(const std::vector<std::uint32_t>& lengths);
    static Medium dataCD(std::uint32_t length);
    /// Adds another closed session with audio tracks.
    void addSession(const std::vector<std::uint32_t>& lengths);

    bool isCD() const { return kind != Kind::DVDR && kind != Kind::Foreign; }
    bool isErasable() const { return kind == Kind::CDRW; }
    /// The end of the program area: the start of the lead-out. 0 on a blank disc.
    std::int32_t end() const { return tracks.empty() ? 0 : tracks.back().end(); }
    /// The first sector of the next track.
    std::int32_t nextStart() const;
    /// Returns the track that an address belongs to, its pre-gap included; null if there is none.
    const MediumTrack* trackAt(std::int32_t address) const;
    /// Returns the bytes of the sectors from `from` up to `to`.
    std::vector<std::byte> bytes(std::int32_t from, std::int32_t to, std::size_t sectorSize) const;
    /// Returns the bytes of a track without its pre-gap and run-out.
    std::vector<std::byte> contentOf(const MediumTrack& track) const;
    /// Blanks an erasable disc.
    void erase();
};

/// Writes the audio tracks of a disc as one BIN and a CUE sheet beside it, including the pre-gaps
/// of the second and later tracks. `path` ends in .cue; the BIN has the same stem.
void saveCue(const Medium& medium, const std::string& path);
/// Writes the first track of a disc, a data track, as an image.
void saveIso(const Medium& medium, const std::string& path);

} // namespace quarner
