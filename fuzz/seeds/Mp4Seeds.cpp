// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/seeds/Seeds.h"

namespace quarner::fuzz {
namespace {

std::string big(std::uint64_t number, int bytes = 4) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift);
    return text;
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

/// A box of the ISO base media file format (ISO 14496-12).
std::string box(const std::string& type, const std::string& content) {
    return big(content.size() + 8) + type + content;
}

/// One with a version and flags, both 0.
std::string fullBox(const std::string& type, const std::string& content) {
    return box(type, big(0) + content);
}

struct Edit {
    std::uint32_t length = 0; ///< in the time of the film, 1/1000 s
    std::int32_t start = 0;   ///< in the time of the track; -1: nothing is heard
};

/// A film with one track of sound.
struct Film {
    std::uint32_t rate = 44100; ///< of the track's time, and named in the sample description
    std::string codec = "mp4a";
    std::string config = "\x12\x08"; ///< AAC, 44.1 kHz, mono
    std::uint32_t duration = 1024;   ///< of each packet
    std::vector<std::string> packets;
    std::vector<Edit> edits;
    std::uint32_t firstSize = 0; ///< of the first packet in the table; 0: as it is
    std::uint32_t offset = 0;    ///< by which the table misses the first packet
    std::uint32_t runs = 1;      ///< that the table of chunks says it has; it has one
    bool tableFirst = true;
};

/// What a decoder of AAC needs to know, in its nest of descriptors (ISO 14496-1, 7.2.6).
std::string decoderBox(const Film& film) {
    const auto descriptor = [](int tag, const std::string& content) {
        return std::string(1, static_cast<char>(tag)) + static_cast<char>(content.size()) + content;
    };
    const std::string config = descriptor(4, "\x40\x15" + zeros(11) + descriptor(5, film.config));
    return fullBox("esds", descriptor(3, big(1, 2) + zeros(1) + config + descriptor(6, "\x02")));
}

std::string descriptionBox(const Film& film) {
    const std::string entry = zeros(6) + big(1, 2) + zeros(8) + big(1, 2) + big(16, 2) + zeros(4) +
                              big(film.rate, 2) + zeros(2) +
                              (film.codec == "mp4a" ? decoderBox(film) : "");
    return fullBox("stsd", big(1) + box(film.codec, entry));
}

std::string tableBox(const Film& film, std::size_t firstPacket) {
    const std::size_t count = film.packets.size();
    std::string sizes = big(0) + big(count);
    for (std::size_t i = 0; i < count; ++i)
        sizes += big(i == 0 && film.firstSize != 0 ? film.firstSize : film.packets[i].size());
    return box("stbl", descriptionBox(film) +
                           fullBox("stts", big(1) + big(count) + big(film.duration)) +
                           fullBox("stsc", big(film.runs) + big(1) + big(count) + big(1)) +
                           fullBox("stsz", sizes) +
                           fullBox("stco", big(1) + big(firstPacket + film.offset)));
}

std::string editBox(const Film& film) {
    if (film.edits.empty())
        return {};
    std::string list = big(film.edits.size());
    for (const Edit& edit : film.edits)
        list += big(edit.length) + big(static_cast<std::uint32_t>(edit.start)) + big(0x10000);
    return box("edts", fullBox("elst", list));
}

std::string matrix() {
    return big(0x10000) + zeros(12) + big(0x10000) + zeros(12) + big(0x40000000);
}

std::string filmBox(const Film& film, std::size_t firstPacket) {
    const std::uint64_t ticks = std::uint64_t(film.duration) * film.packets.size();
    const std::uint64_t milliseconds = ticks * 1000 / film.rate;
    const std::string media =
        fullBox("mdhd", zeros(8) + big(film.rate) + big(ticks) + zeros(4)) +
        fullBox("hdlr", zeros(4) + "soun" + zeros(13)) +
        box("minf", fullBox("smhd", zeros(4)) +
                        box("dinf", fullBox("dref", big(1) + big(12) + "url " + big(1))) +
                        tableBox(film, firstPacket));
    const std::string track = fullBox("tkhd", zeros(8) + big(1) + zeros(4) + big(milliseconds) +
                                                  zeros(16) + matrix() + zeros(8));
    return box("moov", fullBox("mvhd", zeros(8) + big(1000) + big(milliseconds) + big(0x10000) +
                                           zeros(12) + matrix() + zeros(24) + big(2)) +
                           box("trak", track + editBox(film) + box("mdia", media)));
}

std::string fileOf(const Film& film) {
    const std::string type = box("ftyp", "M4A " + big(0) + "M4A mp42");
    std::string content;
    for (const std::string& packet : film.packets)
        content += packet;
    const std::string data = box("mdat", content);
    if (!film.tableFirst)
        return type + data + filmBox(film, type.size() + 8);
    const std::size_t tableSize = filmBox(film, 0).size();
    return type + filmBox(film, type.size() + tableSize + 8) + data;
}

/// A silent frame of one channel: no bands, no tools, then the end mark (ISO 14496-3, 4.4.2).
const std::string silentFrame = std::string("\0\0\0\x07", 4);

Film silent(std::size_t packets) {
    Film film;
    film.packets.assign(packets, silentFrame);
    return film;
}

void putWhole(const SeedFolder& folder) {
    const auto put = [&](const std::string& name, const Film& film) {
        folder.put("m4a", name, fileOf(film));
    };
    put("plain", silent(20));
    Film late = silent(20);
    late.tableFirst = false;
    put("table-behind", late);
    Film rate = silent(20);
    rate.rate = 24000;
    rate.config = "\x13\x08";
    put("another-rate", rate);
    // The codec doubles the rate that the container names.
    Film doubled = silent(20);
    doubled.rate = 22050;
    doubled.config = std::string("\x2B\x8A\x08\0", 4);
    put("doubled-rate", doubled);
    doubled.edits = {{.length = 700, .start = 2048}};
    put("doubled-rate-edited", doubled);
    Film raw;
    raw.codec = "sowt";
    raw.duration = 1;
    raw.packets.assign(200, "ab");
    put("raw", raw);
}

void putEdited(const SeedFolder& folder) {
    const auto put = [&](const std::string& name, std::vector<Edit> edits) {
        Film film = silent(20);
        film.edits = std::move(edits);
        folder.put("m4a", name, fileOf(film));
    };
    put("edit-start", {{.length = 400, .start = 1024}});
    put("edit-within-a-packet", {{.length = 300, .start = 2112}});
    put("edit-end", {{.length = 100, .start = 0}});
    put("edit-behind-the-end", {{.length = 100, .start = 1000000}});
    put("edit-negative", {{.length = 100, .start = -5}});
    put("edit-empty", {{.length = 200, .start = -1}, {.length = 200, .start = 1024}});
    put("edit-two", {{.length = 100, .start = 1024}, {.length = 100, .start = 9000}});
    put("edit-twice-the-same", {{.length = 200, .start = 0}, {.length = 200, .start = 0}});
    put("edit-of-no-length", {{.length = 0, .start = 1024}});
    put("edit-longer-than-all", {{.length = 100000, .start = 1024}});
}

/// A track of `depth` boxes, each within the one before it.
std::string boxesWithinBoxes(std::uint32_t depth) {
    std::string nested;
    for (std::uint32_t left = depth; left > 0; --left)
        nested += big(8 * left) + "mdia";
    return box("ftyp", "M4A " + big(0)) + box("moov", box("trak", nested));
}

void putDamaged(const SeedFolder& folder) {
    const auto put = [&](const std::string& name, const Film& film) {
        folder.put("m4a", name, fileOf(film));
    };
    Film broken = silent(20);
    broken.packets[7] = "\xFF\xFF\xFF\xFF";
    broken.packets[8] = "";
    put("undecodable-within", broken);
    Film first = silent(20);
    first.packets[0] = "\x20\xFF\x07";
    put("undecodable-first", first);
    Film all;
    all.packets.assign(20, "\xFF\x0F");
    put("undecodable", all);
    Film zero = silent(20);
    zero.duration = 0;
    put("no-durations", zero);
    Film odd = silent(20);
    odd.duration = 1000;
    put("odd-durations", odd);
    Film endless = silent(20); // found by the fuzzer: years of silence in a kilobyte
    endless.duration = 0x7FFFFFFF;
    put("endless-durations", endless);
    Film claiming = silent(20); // found by the fuzzer: a table that is read far beyond its end
    claiming.runs = 0x37000001;
    put("runs-that-are-not-there", claiming);
    Film huge = silent(20);
    huge.firstSize = 0x7FFFFFFF;
    put("a-packet-of-two-gigabytes", huge);
    Film missed = silent(20);
    missed.offset = 2;
    put("table-misses-the-packets", missed);
    Film beyond = silent(20);
    beyond.offset = 100000;
    put("packets-behind-the-end", beyond);
    folder.put("m4a", "cut", fileOf(silent(20)).substr(0, fileOf(silent(20)).size() - 30));
    folder.put("m4a", "cut-in-the-table", fileOf(silent(20)).substr(0, 300));
    folder.put("m4a", "boxes-within-boxes", boxesWithinBoxes(60'000)); // more than a stack holds
    folder.put("m4a", "empty", "");
}

} // namespace

void putMp4Seeds(const SeedFolder& folder) {
    putWhole(folder);
    putEdited(folder);
    putDamaged(folder);
}

} // namespace quarner::fuzz
