// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/Medium.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace quarner {
namespace {

/// The lead-out of one session and the lead-in of the next.
constexpr std::int32_t sectorsBetweenSessions = 6750 + 4500;

void write(const std::string& path, std::span<const std::byte> bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

std::string index(int number, std::int32_t sector) {
    std::array<char, 40> line = {};
    std::snprintf(line.data(), line.size(), "    INDEX %02d %02d:%02d:%02d\n", number,
                  sector / 75 / 60, sector / 75 % 60, sector % 75);
    return line.data();
}

} // namespace

Medium Medium::blankCDR(std::uint32_t capacity) {
    Medium medium;
    medium.capacity = capacity;
    return medium;
}

Medium Medium::blankCDRW(std::uint32_t capacity) {
    Medium medium = blankCDR(capacity);
    medium.kind = Kind::CDRW;
    return medium;
}

Medium Medium::blankDVD() {
    Medium medium = blankCDR(2'298'496);
    medium.kind = Kind::DVDR;
    return medium;
}

Medium Medium::foreign(std::uint16_t profile, std::uint32_t length) {
    Medium medium = dataCD(length);
    medium.kind = Kind::Foreign;
    medium.profile = profile;
    medium.capacity = length;
    return medium;
}

Medium Medium::audioCD(const std::vector<std::uint32_t>& lengths) {
    Medium medium;
    medium.addSession(lengths);
    medium.state = State::Closed;
    return medium;
}

void Medium::addSession(const std::vector<std::uint32_t>& lengths) {
    for (const std::uint32_t length : lengths)
        tracks.push_back({.number = static_cast<unsigned>(tracks.size()) + 1,
                          .session = sessions + 1,
                          .start = nextStart(),
                          .preGap = sectorsOfPreGap,
                          .length = length,
                          .isAudio = true});
    ++sessions;
}

Medium Medium::dataCD(std::uint32_t length) {
    Medium medium = audioCD({length});
    medium.tracks[0].isAudio = false;
    return medium;
}

std::int32_t Medium::nextStart() const {
    if (tracks.empty())
        return 0;
    const bool isNewSession = tracks.back().session <= sessions;
    return end() + (isNewSession ? sectorsBetweenSessions : 0) +
           static_cast<std::int32_t>(sectorsOfPreGap);
}

const MediumTrack* Medium::trackAt(std::int32_t address) const {
    const auto found = std::find_if(tracks.begin(), tracks.end(), [&](const MediumTrack& track) {
        return address >= track.start - static_cast<std::int32_t>(track.preGap) &&
               address < track.end();
    });
    return found == tracks.end() ? nullptr : &*found;
}

std::vector<std::byte> Medium::bytes(std::int32_t from, std::int32_t to,
                                     std::size_t sectorSize) const {
    std::vector<std::byte> all(static_cast<std::size_t>(std::max(0, to - from)) * sectorSize);
    for (auto i = sectors.lower_bound(from); i != sectors.end() && i->first < to; ++i)
        std::copy_n(i->second.begin(), std::min(sectorSize, i->second.size()),
                    all.begin() + (i->first - from) * static_cast<std::ptrdiff_t>(sectorSize));
    return all;
}

std::vector<std::byte> Medium::contentOf(const MediumTrack& track) const {
    return bytes(track.start, track.end() - static_cast<std::int32_t>(track.runOut),
                 track.sectorSize());
}

void Medium::erase() {
    state = State::Blank;
    sessions = 0;
    tracks.clear();
    sectors.clear();
    cueSheet.clear();
}

void saveCue(const Medium& medium, const std::string& path) {
    const std::string bin = std::filesystem::path(path).replace_extension(".bin").string();
    std::string sheet = "FILE \"" + std::filesystem::path(bin).filename().string() + "\" BINARY\n";
    for (const MediumTrack& track : medium.tracks) {
        std::array<char, 40> line = {};
        std::snprintf(line.data(), line.size(), "  TRACK %02u AUDIO\n", track.number);
        sheet += line.data();
        if (track.start > 0)
            sheet += index(0, track.start - static_cast<std::int32_t>(track.preGap));
        sheet += index(1, track.start);
    }
    write(bin, medium.bytes(0, medium.end(), 2352));
    write(path, std::as_bytes(std::span(sheet)));
}

void saveIso(const Medium& medium, const std::string& path) {
    write(path, medium.contentOf(medium.tracks.at(0)));
}

} // namespace quarner
