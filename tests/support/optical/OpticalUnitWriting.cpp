// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Writing.
#include <algorithm>

#include "tests/support/optical/OpticalUnit.h"

namespace quarner {
namespace {

constexpr std::size_t cueEntrySize = 8;
constexpr unsigned leadOut = 0xAA;
/// A drive ends a track written track-at-once with two run-out sectors.
constexpr std::uint32_t sectorsOfRunOut = 2;

struct CueEntry {
    unsigned track;
    unsigned index;
    bool isAudio;
    std::int32_t address;
};

std::vector<CueEntry> entriesOf(std::span<const std::byte> sheet) {
    std::vector<CueEntry> entries;
    for (std::size_t at = 0; at + cueEntrySize <= sheet.size(); at += cueEntrySize) {
        const auto byte = [&](std::size_t i) { return std::to_integer<unsigned>(sheet[at + i]); };
        entries.push_back({.track = byte(1),
                           .index = byte(2),
                           .isAudio = (byte(0) & 0x40U) == 0,
                           .address = addressOf(byte(5), byte(6), byte(7))});
    }
    return entries;
}

/// Returns the tracks of a cue sheet without the lead-in and lead-out.
std::vector<MediumTrack> tracksOf(const std::vector<CueEntry>& entries, const Medium& disc) {
    std::vector<MediumTrack> tracks;
    std::int32_t gapStart = 0;
    for (const CueEntry& entry : entries) {
        if (!tracks.empty() && (entry.index == 0 || entry.track == leadOut)) {
            MediumTrack& last = tracks.back();
            if (last.length == 0)
                last.length = static_cast<std::uint32_t>(entry.address - last.start);
        }
        if (entry.index == 0)
            gapStart = entry.address;
        if (entry.index == 1 && entry.track != leadOut) {
            if (!tracks.empty() && tracks.back().length == 0)
                tracks.back().length =
                    static_cast<std::uint32_t>(entry.address - tracks.back().start);
            const bool hasGap = tracks.empty() || gapStart >= tracks.back().end();
            tracks.push_back(
                {.number = entry.track,
                 .session = disc.sessions + 1,
                 .start = entry.address,
                 .preGap = hasGap ? static_cast<std::uint32_t>(entry.address - gapStart) : 0,
                 .isAudio = entry.isAudio});
        }
    }
    return tracks;
}

} // namespace

ScsiReply OpticalUnit::modeSelect(const ScsiCommand& command) {
    constexpr std::size_t header = 8;
    if (command.sent.size() < header + 5 || std::to_integer<unsigned>(command.sent[header]) != 5)
        return sense::good; // another page, which is ignored
    std::vector<std::uint8_t> page;
    for (const std::byte byte : command.sent.subspan(header))
        page.push_back(std::to_integer<std::uint8_t>(byte));
    page.resize(_writeParameters.size());
    constexpr unsigned trackAtOnce = 1;
    constexpr unsigned sessionAtOnce = 2;
    constexpr unsigned rawBlocks = 0;
    constexpr unsigned dataBlocks = 8;
    const unsigned type = page[2] & 0x0FU;
    const unsigned blocks = page[4] & 0x0FU;
    if (type != trackAtOnce && type != sessionAtOnce)
        return sense::invalidParameter;
    if (blocks != rawBlocks && blocks != dataBlocks)
        return sense::invalidParameter;
    _writeParameters = page;
    return {};
}

ScsiReply OpticalUnit::sendCueSheet(const ScsiCommand& command) {
    if (!isAtOnce() || !_medium->isCD() || _openTrack)
        return sense::sequenceError;
    if (_medium->state != Medium::State::Blank && _medium->state != Medium::State::Appendable)
        return sense::incompatibleMedium;
    const std::vector<CueEntry> entries = entriesOf(command.sent);
    if (faults.refusesCueSheet || entries.size() < 4 || entries.back().track != leadOut)
        return sense::invalidParameter;
    PlannedSession planned;
    planned.tracks = tracksOf(entries, *_medium);
    if (planned.tracks.empty())
        return sense::invalidParameter;
    const MediumTrack& first = planned.tracks.front();
    planned.next = first.start - static_cast<std::int32_t>(first.preGap);
    planned.end = entries.back().address;
    if (planned.next != _medium->nextStart() - static_cast<std::int32_t>(sectorsOfPreGap) ||
        planned.end > static_cast<std::int32_t>(_medium->capacity))
        return sense::invalidParameter;
    _medium->cueSheet.clear();
    for (const std::byte byte : command.sent)
        _medium->cueSheet.push_back(std::to_integer<std::uint8_t>(byte));
    _planned = std::move(planned);
    return {};
}

ScsiReply OpticalUnit::write(const ScsiCommand& command) {
    const auto address = static_cast<std::int32_t>(command.at32(2));
    const std::size_t count = command.at16(7);
    if (const ScsiSense failure = beginTrack(address); !failure.isGood())
        return failure;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t at = address + static_cast<std::int32_t>(i);
        const std::size_t size = sectorSizeAt(at);
        if (size * count != command.sent.size())
            return sense::invalidField;
        if (const ScsiSense failure = writeSector(at, command.sent.subspan(i * size, size));
            !failure.isGood())
            return failure;
    }
    return {};
}

/// Checks that writing may continue at an address, and opens a track if there is none.
ScsiSense OpticalUnit::beginTrack(std::int32_t address) {
    if (!_medium->isCD())
        return sense::incompatibleMedium;
    if (_planned)
        return address == _planned->next ? sense::good : sense::invalidWriteAddress;
    if (isAtOnce())
        return sense::sequenceError;
    const std::optional<std::int32_t> next = nextWritable();
    if (!next)
        return sense::incompatibleMedium;
    if (address != *next)
        return sense::invalidWriteAddress;
    if (!_openTrack)
        _openTrack = MediumTrack{.number = static_cast<unsigned>(_medium->tracks.size()) + 1,
                                 .session = _medium->sessions + 1,
                                 .start = address,
                                 .preGap = sectorsOfPreGap,
                                 .isAudio = (_writeParameters[3] & 0x04U) == 0};
    return sense::good;
}

std::size_t OpticalUnit::sectorSizeAt(std::int32_t address) const {
    if (_openTrack)
        return _openTrack->sectorSize();
    for (const MediumTrack& track : _planned->tracks)
        if (address < track.end())
            return track.sectorSize();
    return _planned->tracks.back().sectorSize();
}

ScsiSense OpticalUnit::writeSector(std::int32_t address, std::span<const std::byte> bytes) {
    if (const ScsiSense fault = faultAt(address); !fault.isGood())
        return fault;
    const auto end = _planned ? _planned->end : static_cast<std::int32_t>(_medium->capacity);
    if (address >= end)
        return sense::outOfRange;
    _medium->state = Medium::State::Incomplete;
    _medium->sectors[address].assign(bytes.begin(), bytes.end());
    if (_planned)
        ++_planned->next;
    else
        ++_openTrack->length;
    return sense::good;
}

ScsiSense OpticalUnit::faultAt(std::int32_t address) {
    if (address == faults.writeErrorAt)
        return sense::writeError;
    if (address == faults.removeMediumAt) {
        changeMedium(std::nullopt);
        return sense::noMediumTrayClosed;
    }
    if (address == faults.unplugAt) {
        _isUnplugged = true;
        return sense::noMediumTrayClosed;
    }
    return sense::good;
}

ScsiReply OpticalUnit::synchronize(const ScsiCommand&) {
    if (_planned && _planned->next == _planned->end) {
        for (const MediumTrack& track : _planned->tracks)
            _medium->tracks.push_back(track);
        closeSession();
    }
    return {};
}

ScsiReply OpticalUnit::closeTrackOrSession(const ScsiCommand& command) {
    constexpr unsigned track = 1;
    constexpr unsigned session = 2;
    switch (command.at(2) & 7U) {
    case track:
        closeTrack();
        return {};
    case session:
        closeTrack();
        if (_medium->state == Medium::State::Incomplete)
            closeSession();
        return {};
    default:
        return sense::invalidField;
    }
}

void OpticalUnit::closeTrack() {
    if (!_openTrack)
        return;
    _openTrack->length += sectorsOfRunOut;
    _openTrack->runOut = sectorsOfRunOut;
    _medium->tracks.push_back(*_openTrack);
    _openTrack.reset();
}

void OpticalUnit::closeSession() {
    ++_medium->sessions;
    _medium->state = isMultiSession() ? Medium::State::Appendable : Medium::State::Closed;
    forgetSession();
}

void OpticalUnit::forgetSession() {
    _planned.reset();
    _openTrack.reset();
}

ScsiReply OpticalUnit::blank(const ScsiCommand& command) {
    if (!_medium->isErasable())
        return sense::incompatibleMedium;
    constexpr unsigned wholeDisc = 0;
    constexpr unsigned minimally = 1;
    const unsigned what = command.at(1) & 7U;
    if (what != wholeDisc && what != minimally)
        return sense::invalidField;
    _medium->erase();
    forgetSession();
    _blankingSteps = faults.blankingSteps;
    return {};
}

} // namespace quarner
