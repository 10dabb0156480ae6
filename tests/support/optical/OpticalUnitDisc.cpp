// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Queries about the disc.
#include <algorithm>
#include <map>

#include "tests/support/optical/OpticalUnit.h"

namespace quarner {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint8_t controlOf(const MediumTrack& track) { return track.isAudio ? 0x10 : 0x14; }

/// Writes an address of a table of contents: as time or as number.
void putAddress(Bytes& bytes, std::size_t at, std::int32_t address, bool isTime) {
    if (isTime)
        putTime(bytes, at + 1, address);
    else
        put32(bytes, at, static_cast<std::uint32_t>(address));
}

Bytes finished(Bytes bytes) {
    put16(bytes, 0, static_cast<std::uint32_t>(bytes.size()) - 2);
    return bytes;
}

} // namespace

std::optional<std::int32_t> OpticalUnit::nextWritable() const {
    if (_openTrack)
        return _openTrack->end();
    switch (_medium->state) {
    case Medium::State::Blank:
    case Medium::State::Appendable:
        return _medium->nextStart();
    case Medium::State::Incomplete:
        // Track-at-once may append a track; an interrupted session-at-once is lost.
        return isAtOnce() ? std::nullopt : std::optional(_medium->nextStart());
    case Medium::State::Closed:
        break;
    }
    return std::nullopt;
}

ScsiReply OpticalUnit::discInformation(const ScsiCommand&) {
    Bytes reply(34);
    const Medium& disc = *_medium;
    const auto [status, lastSession] = [&]() -> std::pair<unsigned, unsigned> {
        switch (disc.state) {
        case Medium::State::Blank:
            return {0, 0};
        case Medium::State::Appendable:
            return {1, 0};
        case Medium::State::Incomplete:
            return {1, 1};
        case Medium::State::Closed:
            break;
        }
        return {2, 3};
    }();
    const bool isClosed = disc.state == Medium::State::Closed;
    const unsigned openTracks = isClosed ? 0 : 1;
    reply[2] =
        static_cast<std::uint8_t>((disc.isErasable() ? 0x10U : 0U) | lastSession << 2 | status);
    reply[3] = 1;
    reply[4] = static_cast<std::uint8_t>(disc.sessions + openTracks);
    const auto first = std::find_if(disc.tracks.begin(), disc.tracks.end(), [&](const auto& t) {
        return t.session == disc.sessions + openTracks;
    });
    const auto trackCount = static_cast<unsigned>(disc.tracks.size());
    reply[5] = static_cast<std::uint8_t>(first == disc.tracks.end() ? trackCount + openTracks
                                                                    : first->number);
    reply[6] = static_cast<std::uint8_t>(trackCount + openTracks);
    std::fill_n(reply.begin() + 16, 8, std::uint8_t{0xFF});
    if (!isClosed) {
        reply[16] = reply[20] = 0;
        putTime(reply, 17, disc.state == Medium::State::Blank ? -11'634 : disc.nextStart() - 4500);
        putTime(reply, 21, static_cast<std::int32_t>(disc.capacity));
    }
    return finished(std::move(reply));
}

ScsiReply OpticalUnit::trackInformation(const ScsiCommand& command) {
    const Medium& disc = *_medium;
    const bool isByNumber = (command.at(1) & 3U) == 1;
    const std::uint32_t which = command.at32(2);
    const auto found = std::find_if(disc.tracks.begin(), disc.tracks.end(), [&](const auto& track) {
        return isByNumber ? track.number == which
                          : disc.trackAt(static_cast<std::int32_t>(which)) == &track;
    });
    const std::size_t next = disc.tracks.size() + 1;
    const bool isNext = found == disc.tracks.end();
    if (isNext && isByNumber && which != 0xFF && which != next)
        return sense::invalidField;
    Bytes reply(36);
    if (!isNext) {
        reply[2] = static_cast<std::uint8_t>(found->number);
        reply[3] = static_cast<std::uint8_t>(found->session);
        reply[5] = static_cast<std::uint8_t>(controlOf(*found) & 0x0FU);
        reply[6] = found->isAudio ? 0x0F : 0x01;
        put32(reply, 8, static_cast<std::uint32_t>(found->start));
        put32(reply, 24, found->length);
        return finished(std::move(reply));
    }
    const std::optional<std::int32_t> address = nextWritable();
    if (!address && disc.state == Medium::State::Closed)
        return sense::invalidField;
    reply[2] = static_cast<std::uint8_t>(next);
    reply[3] = static_cast<std::uint8_t>(disc.sessions + 1);
    reply[5] = 0x04;
    reply[6] = 0x41; // nothing in it yet
    if (address) {
        const std::int32_t free = static_cast<std::int32_t>(disc.capacity) - *address;
        reply[7] = 1;
        put32(reply, 8, static_cast<std::uint32_t>(_openTrack ? _openTrack->start : *address));
        put32(reply, 12, static_cast<std::uint32_t>(*address));
        put32(reply, 16, static_cast<std::uint32_t>(std::max(0, free)));
        put32(reply, 24, static_cast<std::uint32_t>(std::max(0, free)));
    }
    return finished(std::move(reply));
}

ScsiReply OpticalUnit::capacity(const ScsiCommand&) {
    Bytes reply(8);
    put32(reply, 0, static_cast<std::uint32_t>(std::max(0, _medium->end() - 1)));
    put32(reply, 4, 2048);
    return reply;
}

ScsiReply OpticalUnit::contents(const ScsiCommand& command) {
    const unsigned format = (command.at(2) & 0x0FU) | static_cast<unsigned>(command.at(9) >> 6);
    if (format == 4)
        return _medium->kind != Medium::Kind::CDROM && _medium->hasPreGroove
                   ? ScsiReply(preGroove())
                   : ScsiReply(sense::invalidField);
    if (_medium->sessions == 0)
        return sense::invalidField;
    switch (format) {
    case 0:
        return simpleContents(command);
    case 1:
        return sessionContents();
    case 2:
        return fullContents();
    default:
        return sense::invalidField; // these discs have no CD-Text
    }
}

Bytes OpticalUnit::simpleContents(const ScsiCommand& command) const {
    const bool isTime = (command.at(1) & 2U) != 0;
    const auto tracks = _medium->tracks;
    Bytes reply = {0, 0, 1, static_cast<std::uint8_t>(tracks.size())};
    const auto add = [&](unsigned number, std::uint8_t control, std::int32_t address) {
        reply.insert(reply.end(), {0, control, static_cast<std::uint8_t>(number), 0, 0, 0, 0, 0});
        putAddress(reply, reply.size() - 4, address, isTime);
    };
    for (const MediumTrack& track : tracks)
        if (track.number >= command.at(6))
            add(track.number, controlOf(track), track.start);
    add(0xAA, controlOf(tracks.back()), _medium->end());
    return finished(std::move(reply));
}

Bytes OpticalUnit::sessionContents() const {
    const auto& tracks = _medium->tracks;
    const auto first = std::find_if(tracks.begin(), tracks.end(), [&](const MediumTrack& track) {
        return track.session == _medium->sessions;
    });
    Bytes reply = {0,
                   0,
                   1,
                   static_cast<std::uint8_t>(_medium->sessions),
                   0,
                   controlOf(*first),
                   static_cast<std::uint8_t>(first->number),
                   0,
                   0,
                   0,
                   0,
                   0};
    put32(reply, 8, static_cast<std::uint32_t>(first->start));
    return finished(std::move(reply));
}

Bytes OpticalUnit::fullContents() const {
    Bytes reply = {0, 0, 1, static_cast<std::uint8_t>(_medium->sessions)};
    const auto add = [&](const MediumTrack& of, unsigned point) -> std::size_t {
        const auto session = static_cast<std::uint8_t>(of.session);
        reply.insert(reply.end(), {session, controlOf(of), 0, static_cast<std::uint8_t>(point), 0,
                                   0, 0, 0, 0, 0, 0});
        return reply.size() - 3;
    };
    std::map<unsigned, std::vector<MediumTrack>> sessions;
    for (const MediumTrack& track : _medium->tracks)
        if (track.session <= _medium->sessions)
            sessions[track.session].push_back(track);
    for (const auto& [number, tracks] : sessions) {
        const MediumTrack& first = tracks.front();
        const MediumTrack& last = tracks.back();
        reply[add(first, 0xA0)] = static_cast<std::uint8_t>(first.number);
        reply[add(last, 0xA1)] = static_cast<std::uint8_t>(last.number);
        putTime(reply, add(last, 0xA2), last.end());
        for (const MediumTrack& track : tracks)
            putTime(reply, add(track, track.number), track.start);
    }
    return finished(std::move(reply));
}

Bytes OpticalUnit::preGroove() const {
    Bytes reply(28);
    reply[2] = 0xC0;
    reply[6] = static_cast<std::uint8_t>(0x80 | (_medium->isErasable() ? 0x40 : 0));
    putTime(reply, 8, -11'634);
    putTime(reply, 12, static_cast<std::int32_t>(_medium->capacity));
    return finished(std::move(reply));
}

} // namespace quarner
