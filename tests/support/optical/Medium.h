// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace quarner {

/// The length of the silence before a track, and the address of the first sector that a recorder
/// is sent: the sectors before sector 0 are the pre-gap of the first track.
constexpr std::uint32_t sectorsOfPreGap = 150;

/// A track as it lies on a disc, in sectors.
struct MediumTrack {
    unsigned number = 1;
    unsigned session = 1;
    std::int32_t start = 0;   ///< of index 1
    std::uint32_t preGap = 0; ///< index 0: the sectors right before `start`
    std::uint32_t length = 0; ///< from `start` on
    bool isAudio = false;     ///< sectors of 2352 bytes of sound, otherwise 2048 bytes of data
    std::uint32_t runOut = 0; ///< the last sectors of `length` that nobody can read

    std::int32_t end() const { return start + static_cast<std::int32_t>(length); }
    std::size_t sectorSize() const { return isAudio ? 2352 : 2048; }
};

/// A disc: what kind it is, and everything that was written to it. A plain value; a copy is a disc
/// of its own.
struct Medium {
    enum class Kind {
        CDR,
        CDRW,
        CDROM,
        DVDR,
        Foreign ///< of the `profile`; the recorder knows no more than how much is on it
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
    /// Whether the drive finds in its lead-in how much it holds, and can tell it.
    bool hasPreGroove = true;
    /// What each written sector holds: 2352 or 2048 bytes. One that is missing reads as zeros.
    std::map<std::int32_t, std::vector<std::byte>> sectors;
    /// The cue sheet of the last session written at once, as it was sent: eight bytes an entry.
    std::vector<std::uint8_t> cueSheet;

    static Medium blankCDR(std::uint32_t capacity = 359'847);
    static Medium blankCDRW(std::uint32_t capacity = 359'847);
    static Medium blankDVD();
    /// A closed disc that is no CD, with so many blocks of data on it.
    static Medium foreign(std::uint16_t profile, std::uint32_t length);
    /// A closed disc with tracks of such lengths: no pressed sound or data, it reads as zeros.
    static Medium audioCD(const std::vector<std::uint32_t>& lengths);
    static Medium dataCD(std::uint32_t length);
    /// Adds a further closed session with tracks of sound.
    void addSession(const std::vector<std::uint32_t>& lengths);

    bool isCD() const { return kind != Kind::DVDR && kind != Kind::Foreign; }
    bool isErasable() const { return kind == Kind::CDRW; }
    /// Where the program area ends: the start of the lead-out. 0 on a blank disc.
    std::int32_t end() const { return tracks.empty() ? 0 : tracks.back().end(); }
    /// The first sector of the next track.
    std::int32_t nextStart() const;
    /// The track whose sectors, its pre-gap included, an address belongs to; null if there is none.
    const MediumTrack* trackAt(std::int32_t address) const;
    /// The bytes from one sector up to another, as the sectors hold them.
    std::vector<std::byte> bytes(std::int32_t from, std::int32_t to, std::size_t sectorSize) const;
    /// The bytes of a track without its pre-gap and its run-out.
    std::vector<std::byte> contentOf(const MediumTrack& track) const;
    /// Back to blank, for discs that can be erased.
    void erase();
};

/// Writes the audio tracks of a disc as one BIN and a CUE sheet beside it, the pre-gaps of the
/// tracks from the second on included. `path` ends in .cue; the BIN is named alike.
void saveCue(const Medium& medium, const std::string& path);
/// Writes the first track of a disc, which holds data, as an image.
void saveIso(const Medium& medium, const std::string& path);

} // namespace quarner
