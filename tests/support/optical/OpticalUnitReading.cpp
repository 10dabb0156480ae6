// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Reading.
#include <algorithm>
#include <cstring>

#include "tests/support/optical/OpticalUnit.h"

namespace quarner {
namespace {

constexpr int samplesOfSector = 588;
constexpr std::size_t bytesOfSample = 4;

void append(std::vector<std::uint8_t>& to, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes)
        to.push_back(std::to_integer<std::uint8_t>(byte));
}

} // namespace

ScsiSense OpticalUnit::readable(std::int32_t address) const {
    const MediumTrack* track = _medium->trackAt(address);
    if (track == nullptr || track->session > _medium->sessions)
        return sense::outOfRange;
    if (address == faults.readErrorAt ||
        address >= track->end() - static_cast<std::int32_t>(track->runOut))
        return sense::unreadable;
    return sense::good;
}

ScsiReply OpticalUnit::readBlocks(const ScsiCommand& command) {
    ScsiReply reply;
    const auto first = static_cast<std::int32_t>(command.at32(2));
    const auto count = static_cast<std::int32_t>(command.at16(7));
    for (std::int32_t address = first; address < first + count; ++address) {
        if (const ScsiSense failure = readable(address); !failure.isGood())
            return failure;
        if (_medium->trackAt(address)->isAudio)
            return sense::wrongTrackMode;
        append(reply.data, _medium->bytes(address, address + 1, 2048));
    }
    return reply;
}

/// Returns the samples that the drive reads for a sector.
std::vector<std::byte> OpticalUnit::soundAt(std::int32_t address) const {
    const std::int64_t from = std::int64_t{address} * samplesOfSector + readOffset;
    std::int64_t sector = from / samplesOfSector - (from % samplesOfSector < 0 ? 1 : 0);
    const auto skipped = static_cast<std::size_t>(from - sector * samplesOfSector) * bytesOfSample;
    const auto at = static_cast<std::int32_t>(sector);
    std::vector<std::byte> both = _medium->bytes(at, at + 2, 2352);
    return {both.begin() + static_cast<std::ptrdiff_t>(skipped),
            both.begin() + static_cast<std::ptrdiff_t>(skipped + 2352)};
}

ScsiReply OpticalUnit::readCD(const ScsiCommand& command) {
    constexpr unsigned sound = 1;
    const unsigned expected = (command.at(1) >> 2) & 7U;
    const auto first = static_cast<std::int32_t>(command.at32(2));
    const auto count = static_cast<std::int32_t>(command.at24(6));
    if (command.at(10) != 0)
        return sense::invalidField;
    ScsiReply reply;
    for (std::int32_t address = first; address < first + count; ++address) {
        if (const ScsiSense failure = readable(address); !failure.isGood())
            return failure;
        const bool isAudio = _medium->trackAt(address)->isAudio;
        if (expected != 0 && (expected == sound) != isAudio)
            return sense::wrongTrackMode;
        if (isAudio)
            append(reply.data, soundAt(address));
        else
            append(reply.data, _medium->bytes(address, address + 1, 2048));
    }
    return reply;
}

} // namespace quarner
