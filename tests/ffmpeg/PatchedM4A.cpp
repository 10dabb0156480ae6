// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/ffmpeg/PatchedM4A.h"

#include <cstdio>

namespace quarner::testing {

namespace {

std::string box(const std::string& name, const std::string& content) {
    return bigEndian(static_cast<std::uint32_t>(content.size() + 8)) + name + content;
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

/// The numbers of a note: hexadecimal, of which the second and the third count.
std::string noteText(std::uint32_t delay, std::uint32_t padding) {
    char numbers[64] = {};
    std::snprintf(numbers, sizeof numbers, " 00000000 %08X %08X 0000000000000000", delay, padding);
    std::string text = numbers;
    for (int i = 0; i < 8; ++i)
        text += " 00000000";
    return text;
}

} // namespace

PatchedM4A& PatchedM4A::setEdits(const std::vector<Edit>& edits) {
    constexpr std::size_t header = 12; // the name, the version and the number of entries
    constexpr std::size_t entry = 12;
    std::string entries;
    for (const Edit& edit : edits)
        entries += bigEndian(edit.duration) + bigEndian(edit.mediaTime) + bigEndian(0x10000);
    set("mvhd", 16, bigEndian(44100));
    set("elst", 8, bigEndian(static_cast<std::uint32_t>(edits.size())));
    content.replace(content.find("elst") + header, entry, entries);
    for (const char* name : {"moov", "trak", "edts", "elst"}) {
        const std::size_t size = content.find(name) - 4;
        std::uint32_t bytes = 0;
        for (std::size_t i = size; i < size + 4; ++i)
            bytes = bytes << 8 | static_cast<unsigned char>(content[i]);
        content.replace(size, 4,
                        bigEndian(bytes + static_cast<std::uint32_t>(entries.size() - entry)));
    }
    return *this;
}

PatchedM4A& PatchedM4A::noteDelay(std::uint32_t delay, std::uint32_t padding) {
    const std::string note = box(
        "----", box("mean", zeros(4) + "com.apple.iTunes") + box("name", zeros(4) + "iTunSMPB") +
                    box("data", bigEndian(1) + zeros(4) + noteText(delay, padding)));
    const std::string handler = box("hdlr", zeros(8) + "mdirappl" + zeros(9));
    const std::string added = box("udta", box("meta", zeros(4) + handler + box("ilst", note)));
    const std::size_t tables = content.find("moov") - 4;
    content.replace(tables, 4,
                    bigEndian(static_cast<std::uint32_t>(content.size() - tables + added.size())));
    content += added;
    return *this;
}

} // namespace quarner::testing
