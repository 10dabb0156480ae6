// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Queries about the drive.
#include <algorithm>

#include "tests/support/optical/OpticalUnit.h"

namespace quarner {
namespace {

constexpr std::uint16_t profileNone = 0x00;
constexpr std::uint16_t profileCDROM = 0x08;
constexpr std::uint16_t profileCDR = 0x09;
constexpr std::uint16_t profileCDRW = 0x0A;
constexpr std::uint16_t profileDVDR = 0x11;

constexpr std::uint32_t fastestReading = 8467; // kB/s, 48 times the speed of play
constexpr std::uint32_t bufferBytes = 2U << 20;

using Bytes = std::vector<std::uint8_t>;

/// The name padded with blanks.
void putText(Bytes& bytes, std::size_t at, std::size_t size, const std::string& text) {
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, std::uint8_t{' '});
    std::copy_n(text.begin(), std::min(size, text.size()),
                bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

void addFeature(Bytes& bytes, std::uint16_t code, bool isCurrent, const Bytes& data) {
    bytes.push_back(static_cast<std::uint8_t>(code >> 8));
    bytes.push_back(static_cast<std::uint8_t>(code));
    bytes.push_back(isCurrent ? 1 : 0);
    bytes.push_back(static_cast<std::uint8_t>(data.size()));
    bytes.insert(bytes.end(), data.begin(), data.end());
}

Bytes profileList(std::uint16_t current) {
    Bytes list;
    for (const std::uint16_t profile : {profileDVDR, profileCDRW, profileCDR, profileCDROM}) {
        list.push_back(static_cast<std::uint8_t>(profile >> 8));
        list.push_back(static_cast<std::uint8_t>(profile));
        list.push_back(profile == current ? 1 : 0);
        list.push_back(0);
    }
    return list;
}

} // namespace

ScsiReply OpticalUnit::inquiry(const ScsiCommand&) {
    Bytes reply(36);
    reply[0] = 5;    // a CD or DVD drive
    reply[1] = 0x80; // with removable discs
    reply[2] = 5;
    reply[3] = 0x32;
    reply[4] = 31;
    putText(reply, 8, 8, _vendor);
    putText(reply, 16, 16, _product);
    putText(reply, 32, 4, "1.0");
    return reply;
}

std::uint16_t OpticalUnit::profile() const {
    if (!hasMedium())
        return profileNone;
    switch (_medium->kind) {
    case Medium::Kind::CDR:
        return profileCDR;
    case Medium::Kind::CDRW:
        return profileCDRW;
    case Medium::Kind::CDROM:
        return profileCDROM;
    case Medium::Kind::DVDR:
        return profileDVDR;
    case Medium::Kind::Foreign:
        return _medium->profile;
    }
    return profileNone;
}

ScsiReply OpticalUnit::configuration(const ScsiCommand&) {
    const std::uint16_t current = profile();
    const bool isWritableCD = current == profileCDR || current == profileCDRW;
    Bytes reply(8);
    put16(reply, 6, current);
    addFeature(reply, 0x0000, true, profileList(current));
    addFeature(reply, 0x0001, true, {0, 0, 0, 1, 1, 0, 0, 0});      // core
    addFeature(reply, 0x0003, true, {0x29, 0, 0, 0});               // tray, lock, eject
    addFeature(reply, 0x001E, hasMedium(), {0, 0, 0, 0});           // reads CDs
    addFeature(reply, 0x002D, isWritableCD, {0x42, 0, 0, 1});       // track-at-once
    addFeature(reply, 0x002E, isWritableCD, {0x62, 0, 0x0C, 0x00}); // session-at-once
    addFeature(reply, 0x0037, current == profileCDRW, {0, 7, 0, 0});
    put32(reply, 0, static_cast<std::uint32_t>(reply.size()) - 4);
    return reply;
}

Bytes OpticalUnit::capabilities() const {
    Bytes page(32 + 4 * writeSpeeds.size());
    page[0] = 0x2A;
    page[1] = static_cast<std::uint8_t>(page.size() - 2);
    page[2] = 0x1B; // reads CD-R, CD-RW, DVD
    page[3] = 0x03; // writes CD-R, CD-RW
    page[4] = 0x80; // buffer underrun protection
    page[5] = 0x03; // reads audio
    page[6] = static_cast<std::uint8_t>(0x29 | (_isTrayLocked ? 0x02 : 0));
    put16(page, 8, fastestReading);
    put16(page, 12, bufferBytes >> 10);
    put16(page, 14, fastestReading);
    put16(page, 18, writeSpeeds.front());
    put16(page, 20, writeSpeeds.front());
    put16(page, 28, writeSpeeds.front());
    put16(page, 30, static_cast<std::uint32_t>(writeSpeeds.size()));
    for (std::size_t i = 0; i < writeSpeeds.size(); ++i)
        put16(page, 34 + 4 * i, writeSpeeds[i]);
    return page;
}

ScsiReply OpticalUnit::modeSense(const ScsiCommand& command) {
    Bytes page;
    switch (command.at(2) & 0x3FU) {
    case 0x01:
        page = {0x01, 0x0A, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0};
        break;
    case 0x05:
        page = _writeParameters;
        page[0] = 0x05;
        page[1] = static_cast<std::uint8_t>(page.size() - 2);
        break;
    case 0x2A:
        page = capabilities();
        break;
    default:
        return sense::invalidField;
    }
    Bytes reply(8);
    reply.insert(reply.end(), page.begin(), page.end());
    put16(reply, 0, static_cast<std::uint32_t>(reply.size()) - 2);
    return reply;
}

ScsiReply OpticalUnit::performance(const ScsiCommand& command) {
    const bool isOfWriting = command.at(10) == 3;
    const std::uint32_t end = hasMedium() ? _medium->capacity : 0;
    const std::size_t wanted = command.at16(8);
    const std::size_t count = std::min(wanted, isOfWriting ? writeSpeeds.size() : std::size_t{1});
    Bytes reply(8 + 16 * count);
    const std::size_t whole = 8 + 16 * (isOfWriting ? writeSpeeds.size() : 1);
    put32(reply, 0, static_cast<std::uint32_t>(whole - 4));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = 8 + 16 * i;
        put32(reply, at + 4, isOfWriting ? end : 0);
        put32(reply, at + 8, isOfWriting ? fastestReading : end);
        put32(reply, at + 12, isOfWriting ? writeSpeeds[i] : fastestReading);
    }
    return reply;
}

ScsiReply OpticalUnit::eventStatus(const ScsiCommand& command) {
    constexpr std::uint8_t mediaClass = 4;
    if ((command.at(1) & 1U) == 0)
        return sense::invalidField;
    const bool isAsked = (command.at(4) & (1U << mediaClass)) != 0;
    const std::uint8_t state =
        static_cast<std::uint8_t>((_isTrayOpen ? 1 : 0) | (hasMedium() ? 2 : 0));
    if (!isAsked)
        return Bytes{0, 2, 0x80, 1U << mediaClass};
    return Bytes{0, 6, mediaClass, 1U << mediaClass, 0, state, 0, 0};
}

ScsiReply OpticalUnit::bufferCapacity(const ScsiCommand&) {
    Bytes reply(12);
    put16(reply, 0, 10);
    put32(reply, 4, bufferBytes);
    put32(reply, 8, bufferBytes);
    return reply;
}

} // namespace quarner
