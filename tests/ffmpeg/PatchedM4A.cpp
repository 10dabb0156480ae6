// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/ffmpeg/PatchedM4A.h"

#include <cstdio>

namespace quarner::testing {

namespace {

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

std::string mp4Box(const std::string& name, const std::string& content) {
    return bigEndian(static_cast<std::uint32_t>(content.size() + 8)) + name + content;
}

PatchedM4A& PatchedM4A::setEdits(const std::vector<Edit>& edits) {
    constexpr std::size_t header = 12; // the name, the version and the number of entries
    constexpr std::size_t entry = 12;
    std::string entries;
    for (const Edit& edit : edits)
        entries += bigEndian(edit.duration) + bigEndian(edit.mediaTime) + bigEndian(0x10000);
    set("mvhd", 16, bigEndian(44100));
    set("elst", 8, bigEndian(static_cast<std::uint32_t>(edits.size())));
    content.replace(content.find("elst") + header, entry, entries);
    grow({"moov", "trak", "edts", "elst"}, entries.size() - entry);
    return *this;
}

PatchedM4A& PatchedM4A::noteDelay(std::uint32_t delay, std::uint32_t padding) {
    const std::string note =
        mp4Box("----", mp4Box("mean", zeros(4) + "com.apple.iTunes") +
                           mp4Box("name", zeros(4) + "iTunSMPB") +
                           mp4Box("data", bigEndian(1) + zeros(4) + noteText(delay, padding)));
    return addNotes(note);
}

PatchedM4A& PatchedM4A::addNotes(const std::string& notes) {
    const std::string handler = mp4Box("hdlr", zeros(8) + "mdirappl" + zeros(9));
    return append({"moov"},
                  mp4Box("udta", mp4Box("meta", zeros(4) + handler + mp4Box("ilst", notes))));
}

PatchedM4A& PatchedM4A::append(const std::vector<std::string>& boxes, const std::string& bytes) {
    content.insert(endOf(boxes.back()), bytes);
    grow(boxes, bytes.size());
    return *this;
}

std::size_t PatchedM4A::endOf(const std::string& box) const {
    const std::size_t begin = content.find(box) - 4;
    std::size_t size = 0;
    for (std::size_t i = begin; i < begin + 4; ++i)
        size = size << 8 | static_cast<unsigned char>(content[i]);
    return begin + size;
}

void PatchedM4A::grow(const std::vector<std::string>& boxes, std::size_t bytes) {
    for (const std::string& box : boxes) {
        const std::size_t begin = content.find(box) - 4;
        content.replace(begin, 4,
                        bigEndian(static_cast<std::uint32_t>(endOf(box) - begin + bytes)));
    }
}

} // namespace quarner::testing
