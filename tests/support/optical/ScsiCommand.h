// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace quarner {

/// One command as a drive receives it. Numbers in it are big-endian.
struct ScsiCommand {
    std::span<const std::uint8_t> block; ///< the command itself; the first byte names it
    std::span<const std::byte> sent;     ///< the data sent with it

    std::uint8_t operation() const { return at(0); }
    std::uint8_t at(std::size_t byte) const { return byte < block.size() ? block[byte] : 0; }
    std::uint32_t at16(std::size_t byte) const {
        return static_cast<std::uint32_t>(at(byte) << 8 | at(byte + 1));
    }
    std::uint32_t at24(std::size_t byte) const { return at16(byte) << 8 | at(byte + 2); }
    std::uint32_t at32(std::size_t byte) const { return at16(byte) << 16 | at16(byte + 2); }
};

/// The sense data of a command: why it failed. A key of 0 means success.
struct ScsiSense {
    std::uint8_t key = 0;
    std::uint8_t code = 0;
    std::uint8_t qualifier = 0;
    std::uint16_t progress = 0; ///< of the current operation, of 65536; 0: not reported

    bool isGood() const { return key == 0; }
    /// Returns the fixed format of 18 bytes.
    std::vector<std::uint8_t> bytes() const {
        const std::uint8_t isProgress = progress > 0 ? 0x80 : 0;
        return {0x70,
                0,
                key,
                0,
                0,
                0,
                0,
                10,
                0,
                0,
                0,
                0,
                code,
                qualifier,
                0,
                isProgress,
                static_cast<std::uint8_t>(progress >> 8),
                static_cast<std::uint8_t>(progress)};
    }

    bool operator==(const ScsiSense&) const = default;
};

namespace sense {
constexpr ScsiSense good;
constexpr ScsiSense becomingReady{0x2, 0x04, 0x01};
constexpr ScsiSense operationInProgress{0x2, 0x04, 0x07};
constexpr ScsiSense noMediumTrayClosed{0x2, 0x3A, 0x01};
constexpr ScsiSense noMediumTrayOpen{0x2, 0x3A, 0x02};
constexpr ScsiSense writeError{0x3, 0x0C, 0x00};
constexpr ScsiSense unreadable{0x3, 0x11, 0x00};
constexpr ScsiSense invalidOperation{0x5, 0x20, 0x00};
constexpr ScsiSense outOfRange{0x5, 0x21, 0x00};
constexpr ScsiSense invalidWriteAddress{0x5, 0x21, 0x02};
constexpr ScsiSense invalidField{0x5, 0x24, 0x00};
constexpr ScsiSense invalidParameter{0x5, 0x26, 0x00};
constexpr ScsiSense sequenceError{0x5, 0x2C, 0x00};
constexpr ScsiSense incompatibleMedium{0x5, 0x30, 0x05};
constexpr ScsiSense removalPrevented{0x5, 0x53, 0x02};
constexpr ScsiSense wrongTrackMode{0x5, 0x64, 0x00};
constexpr ScsiSense mediumChanged{0x6, 0x28, 0x00};
} // namespace sense

/// The reply of a drive.
struct ScsiReply {
    ScsiSense sense;
    std::vector<std::uint8_t> data;

    ScsiReply() = default;
    ScsiReply(const ScsiSense& failure) : sense(failure) {}
    ScsiReply(std::vector<std::uint8_t> reply) : data(std::move(reply)) {}
};

inline void put16(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value) {
    bytes.at(at) = static_cast<std::uint8_t>(value >> 8);
    bytes.at(at + 1) = static_cast<std::uint8_t>(value);
}
inline void put32(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value) {
    put16(bytes, at, value >> 16);
    put16(bytes, at + 2, value & 0xFFFF);
}
/// Writes an address as minutes, seconds and frames, three bytes.
inline void putTime(std::vector<std::uint8_t>& bytes, std::size_t at, std::int32_t address) {
    const std::int32_t frames = address + 150 + (address < -150 ? 450'000 : 0);
    bytes.at(at) = static_cast<std::uint8_t>(frames / 75 / 60);
    bytes.at(at + 1) = static_cast<std::uint8_t>(frames / 75 % 60);
    bytes.at(at + 2) = static_cast<std::uint8_t>(frames % 75);
}
inline std::int32_t addressOf(std::uint32_t minutes, std::uint32_t seconds, std::uint32_t frames) {
    return static_cast<std::int32_t>((minutes * 60 + seconds) * 75 + frames) - 150;
}

} // namespace quarner
