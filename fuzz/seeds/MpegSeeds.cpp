// SPDX-License-Identifier: LGPL-2.1-or-later
#include <array>
#include <cstdint>
#include <string>

#include "fuzz/seeds/Seeds.h"

namespace quarner::fuzz {
namespace {

std::string bigEndian(std::uint32_t number, int bytes) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift);
    return text;
}

std::string noise(std::size_t bytes) {
    std::string text;
    for (std::uint32_t value = 1; text.size() < bytes; value = value * 1664525 + 1013904223)
        text += static_cast<char>(value >> 24);
    return text;
}

/// The fields of a frame header of MPEG audio (ISO 11172-3, 2.4.1.3) in which the inputs differ.
struct Frame {
    std::uint32_t version = 3; ///< 3: MPEG 1; 2: MPEG 2; 0: MPEG 2.5
    std::uint32_t layer = 1;   ///< 1: III; 2: II; 3: I
    std::uint32_t rate = 0;    ///< 44.1, 48, 32 kHz; half and a quarter of it in the later versions
    std::uint32_t mode = 3;    ///< 0: stereo; 3: mono
    std::uint32_t bits = 1;    ///< index of the bit rate: 32 kbit/s; 8 in the later versions
    bool isNoise = false;      ///< its sound cannot be decoded
};

std::size_t sizeOf(const Frame& frame) {
    constexpr std::array<std::size_t, 3> rates = {44100, 48000, 32000};
    const bool isFirst = frame.version == 3;
    const std::size_t rate = rates[frame.rate] / (isFirst ? 1U : frame.version == 2 ? 2U : 4U);
    const std::size_t bitsPerSecond = (isFirst ? 32000U : 8000U) * frame.bits;
    const std::size_t samples = frame.layer == 1 && !isFirst ? 576 : 1152;
    return samples / 8 * bitsPerSecond / rate;
}

/// Frames that are silent, or that hold noise.
std::string frames(const Frame& frame, int count) {
    const std::uint32_t header = 0x7FFU << 21 | frame.version << 19 | frame.layer << 17 | 1U << 16 |
                                 frame.bits << 12 | frame.rate << 10 | frame.mode << 6;
    std::string bytes = bigEndian(header, 4);
    const std::size_t size = sizeOf(frame);
    bytes += frame.isNoise ? noise(size - 4) : std::string(size - 4, '\0');
    std::string all;
    for (; count > 0; --count)
        all += bytes;
    return all;
}

/// A frame with an encoder's note.
std::string noteFrame(std::uint32_t count, std::uint32_t size, std::uint32_t delay,
                      std::uint32_t padding) {
    std::string bytes = frames({.bits = 5}, 1);
    const std::string note = "Info" + bigEndian(3, 4) + bigEndian(count, 4) + bigEndian(size, 4) +
                             "LAME3.100" + std::string(12, '\0') +
                             bigEndian(delay << 12 | padding, 3);
    return bytes.replace(4 + 17, note.size(), note);
}

std::string textTag(std::size_t size) {
    const auto low = static_cast<std::uint32_t>(size);
    return "ID3" + bigEndian(0x0400, 2) + '\0' +
           bigEndian((low >> 7 & 0x7F) << 8 | (low & 0x7F), 4) + std::string(size, '\0');
}

std::string lastTag() { return "TAG" + std::string(125, ' '); }

void putPlain(const SeedFolder& folder) {
    const auto put = [&](const std::string& name, const std::string& bytes) {
        folder.put("mp3", name, bytes);
    };
    put("plain", frames({}, 20));
    put("stereo", frames({.mode = 0, .bits = 5}, 10));
    put("quarter-rate", frames({.version = 0}, 30));
    put("layer-2", frames({.layer = 2, .bits = 2}, 20));
    put("tags", textTag(300) + frames({}, 20) + lastTag());
    put("note", noteFrame(20, 20 * 104 + 522, 576, 1000) + frames({}, 20));
    put("note-that-promises-more", noteFrame(5000, 500000, 576, 1000) + frames({}, 20));
    put("note-that-promises-less", noteFrame(3, 300, 4095, 4095) + frames({}, 20));
    put("note-alone", noteFrame(20, 2000, 0, 0));
    put("empty", "");
    put("one-frame", frames({}, 1));
    put("undecodable", frames({.isNoise = true}, 20));
}

void putJoined(const SeedFolder& folder) {
    const Frame first = {};
    const Frame others[] = {{.rate = 1},
                            {.rate = 2},
                            {.version = 2},
                            {.version = 2, .mode = 0},
                            {.version = 0, .rate = 1},
                            {.mode = 0, .bits = 3},
                            {.layer = 2, .bits = 2},
                            {.layer = 3, .bits = 1}};
    int index = 0;
    for (const Frame& other : others) {
        const std::string name = std::to_string(++index);
        folder.put("mp3", "joined-" + name, frames(first, 12) + frames(other, 12));
        folder.put("mp3", "joined-the-other-way-" + name, frames(other, 12) + frames(first, 12));
        folder.put("mp3", "one-stray-frame-" + name,
                   frames(first, 10) + frames(other, 1) + frames(first, 10));
    }
}

/// Found by the fuzzer: frames of three rates, some of them cut.
std::string cutFramesOfThreeRates() {
    const std::string whole = frames({}, 1);
    const std::string slow = frames({.version = 0}, 1);
    std::string bytes = frames({.version = 2}, 12);
    for (int times = 3; times > 0; --times)
        bytes += whole.substr(0, 68) + whole + whole.substr(0, 35) + slow + slow + "abc" +
                 frames({.version = 0}, 12) + slow.substr(0, 30);
    return bytes + frames({}, 8);
}

void putDamaged(const SeedFolder& folder) {
    const auto put = [&](const std::string& name, const std::string& bytes) {
        folder.put("mp3", name, bytes);
    };
    put("cut-frames-of-three-rates", cutFramesOfThreeRates());
    const std::string some = frames({}, 12);
    put("cut", some + some.substr(0, 50));
    put("zeros-within", some + std::string(1000, '\0') + some);
    put("zeros-behind", some + std::string(5000, '\0'));
    put("zeros-before", std::string(3000, '\0') + some);
    put("noise-within", some + noise(1500) + some);
    put("noise-before", noise(1000) + some);
    put("noise-behind", some + noise(3000));
    put("half-a-frame-lost", some + some.substr(60) + some);
    put("undecodable-within", some + frames({.isNoise = true}, 5) + some);
    put("tag-within", some + textTag(200) + some + lastTag() + some);
    put("note-within", some + noteFrame(12, 2000, 576, 576) + some);
    put("cut-tag", textTag(5000).substr(0, 200));
}

} // namespace

void putMpegSeeds(const SeedFolder& folder) {
    putPlain(folder);
    putJoined(folder);
    putDamaged(folder);
}

} // namespace quarner::fuzz
