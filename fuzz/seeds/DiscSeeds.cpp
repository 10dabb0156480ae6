// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstdint>
#include <string>

#include "fuzz/seeds/Seeds.h"
#include "quarner/platform/DiscFormat.h"

namespace quarner::fuzz {
namespace {

std::string bigEndian(std::uint64_t number, int bytes) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift);
    return text;
}

std::string littleEndian32(std::uint32_t number) {
    return {static_cast<char>(number), static_cast<char>(number >> 8),
            static_cast<char>(number >> 16), static_cast<char>(number >> 24)};
}

/// A directory record; its name as it stands on the disc.
std::string record(const std::string& name, std::uint32_t block, std::uint32_t size) {
    std::string bytes(33, '\0');
    bytes.replace(2, 4, littleEndian32(block)).replace(10, 4, littleEndian32(size));
    bytes[32] = static_cast<char>(name.size());
    bytes += name;
    bytes[0] = static_cast<char>(bytes.size());
    return bytes;
}

std::string wide(std::string_view name) {
    std::string text;
    for (const char byte : name)
        text += bigEndian(static_cast<unsigned char>(byte), 2);
    return text;
}

std::string padded(std::string bytes, std::size_t size = dataBlockSize) {
    bytes.resize(size);
    return bytes;
}

/// The supplementary descriptor of a tree whose root directory lies here.
std::string descriptor(std::uint32_t block, std::uint32_t size) {
    std::string bytes(dataBlockSize, '\0');
    bytes[0] = 2;
    bytes.replace(88, 3, "%/E");
    bytes.replace(156, 34, record(std::string(1, '\0'), block, size));
    return bytes;
}

const std::string terminator = padded("\xFF");

/// Descriptor, terminator and a root directory in block 18.
std::string disc(const std::string& directory, std::uint32_t size) {
    return descriptor(18, size) + terminator + directory;
}

void putJolietDirectories(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, const std::string& bytes) {
        folder.put("joliet-directory", name, bytes);
    };
    const std::string dots =
        record(std::string(1, '\0'), 18, dataBlockSize) + record("\x01", 18, dataBlockSize);
    put("two-files",
        disc(padded(dots + record(wide("one.mp3"), 20, 5000) + record(wide("two.mp3"), 23, 100)),
             dataBlockSize));
    put("two-blocks", disc(padded(dots) + padded(record(wide("one.mp3"), 20, 1)), 4096));
    put("directory-behind-the-end", descriptor(4000000000, dataBlockSize) + terminator);
    put("directory-larger-than-the-disc", disc(padded(dots), 0xFFFFFFFF));
    put("record-cut-off",
        disc(padded(dots) + record(wide("one.mp3"), 20, 1).substr(0, 34), dataBlockSize + 34));
    put("name-longer-than-its-record",
        disc(padded("\x22" + std::string(31, 'x') + "\xFF"), dataBlockSize));
    put("odd-name", disc(padded(record("abc", 20, 1)), dataBlockSize));
    put("record-of-one-byte", disc(padded("\x01\x01\x01"), dataBlockSize));
    put("no-terminator", padded("\x01") + padded("\x01"));
    put("cut-descriptor", descriptor(18, dataBlockSize).substr(0, 200));
    put("empty", "");
}

// A part of a disc: its kind (0 silence, 1 a level, 2 a tone, 3 noise), its samples, its value.
Bytes& part(Bytes& bytes, unsigned kind, std::uint16_t samples, unsigned value) {
    bytes.byte(kind).number(samples);
    return kind == 0 ? bytes : bytes.byte(value);
}

struct Reading {
    unsigned kind;
    std::int16_t shift;
    unsigned spoilt;
};

/// Ends a disc: written four and read three sectors at a time, by this drive.
Bytes& readBy(Bytes& bytes, const Reading& reading) {
    return bytes.byte(3).byte(2).byte(reading.kind).number(reading.shift).byte(reading.spoilt);
}

void putSampleOffsets(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, Bytes bytes, const Reading& reading) {
        folder.put("sample-offset", name, readBy(bytes, reading));
    };
    const auto noise = [] {
        Bytes bytes;
        bytes.byte(31).byte(1);
        return part(bytes, 3, 14000, 7);
    };
    put("noise", noise(), {0, 667, 0});
    put("noise-the-other-way", noise(), {0, -1500, 0});
    put("not-before-the-disc", noise(), {1, 1500, 0});
    put("never-read", noise(), {2, 0, 0});
    put("failing-later", noise(), {3, 30, 5});
    put("spoilt", noise(), {4, 30, 100});
    put("silent", Bytes().byte(3).byte(0), {0, 12, 0});
    put("one-sector", Bytes().byte(0).byte(0), {0, 1500, 0});
    Bytes late;
    late.byte(31).byte(3);
    part(part(part(late, 0, 2000, 0), 2, 9000, 12), 3, 500, 1);
    put("silence-tone-noise", late, {0, -30, 0});
    Bytes tone;
    tone.byte(31).byte(1);
    put("nothing-but-a-tone", part(tone, 2, 14100, 20), {0, 700, 0});
    Bytes level;
    level.byte(20).byte(2);
    put("a-level-that-changes", part(part(level, 1, 7000, 1), 1, 3000, 2), {0, 1499, 0});
}

void putEncoderTags(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, const std::string& bytes) {
        folder.put("encoder-tag", name, bytes);
    };
    const std::string end = "LAME3.100" + std::string(12, '\0') + bigEndian(576 << 12 | 1000, 3);
    const std::string head = padded("\xFF\xFB\x90\x64", 36);
    const std::string all = "Xing" + bigEndian(15, 4) + bigEndian(386, 4) + bigEndian(160000, 4) +
                            std::string(100, 'x') + bigEndian(78, 4);
    put("all-fields", head + all + padded(end, 36));
    put("frames-only", head + "Info" + bigEndian(1, 4) + bigEndian(386, 4) + end);
    put("no-frames", head + "Info" + bigEndian(2, 4) + bigEndian(386, 4) + end);
    put("cut-after-each-field", head + "Xing" + bigEndian(15, 4) + bigEndian(386, 4));
    put("cut-in-the-flags", head + "Xing\x01");
    put("cut-in-the-trimming",
        (head + "Info" + bigEndian(1, 4) + bigEndian(386, 4) + end).substr(0, 36 + 12 + 22));
    put("two-tags", head + all + end + head + "Info" + bigEndian(1, 4) + bigEndian(1, 4) + end);
    put("another-encoder",
        head + "Info" + bigEndian(1, 4) + bigEndian(386, 4) + padded("Other", 40));
    put("largest-figures", head + "Info" + bigEndian(1, 4) + bigEndian(0xFFFFFFFF, 4) +
                               end.substr(0, 21) + "\xFF\xFF\xFF");
    put("empty", "");
}

} // namespace

void putDiscSeeds(const SeedFolder& folder) {
    putJolietDirectories(folder);
    putSampleOffsets(folder);
    putEncoderTags(folder);
}

} // namespace quarner::fuzz
