// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Utf8.h"

#include <cstddef>

namespace quarner {
namespace {

char32_t byteAt(std::string_view text, std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
}

/// The bits that the first byte of a sequence of this length contributes.
char32_t leadingBits(char32_t first, std::size_t length) {
    return length == 1 ? first : first & (0x7FU >> length);
}

/// The length that the first byte of a sequence announces; 0 if it begins none.
std::size_t announcedLength(char32_t first) {
    if (first < 0x80U)
        return 1;
    if (first >= 0xC2U && first <= 0xDFU)
        return 2;
    if (first >= 0xE0U && first <= 0xEFU)
        return 3;
    return first >= 0xF0U && first <= 0xF4U ? 4 : 0;
}

/// Not longer than needed, no half of a UTF-16 pair, and in the range of Unicode (table 3-7).
bool isWellFormed(char32_t character, std::size_t length) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = character >= 0xD800U && character <= 0xDFFFU;
    return character >= smallest[length] && !isSurrogate && character <= 0x10FFFFU;
}

} // namespace

bool isControl(char32_t character) { return character < 0x20U || character == 0x7FU; }

std::optional<char32_t> takeCharacter(std::string_view& text) {
    const std::string_view all = text;
    text.remove_prefix(1);
    const std::size_t length = announcedLength(byteAt(all, 0));
    if (length == 0)
        return std::nullopt;
    char32_t character = leadingBits(byteAt(all, 0), length);
    for (std::size_t i = 1; i < length; ++i) {
        const char32_t byte = byteAt(all, i);
        if ((byte & 0xC0U) != 0x80U)
            return std::nullopt;
        character = character << 6U | (byte & 0x3FU);
    }
    if (!isWellFormed(character, length))
        return std::nullopt;
    text.remove_prefix(length - 1);
    return character;
}

std::string readableName(std::string_view name) {
    constexpr char replacement[] = "\xEF\xBF\xBD";
    std::string readable;
    while (!name.empty()) {
        const std::string_view rest = name;
        const std::optional<char32_t> character = takeCharacter(name);
        const bool isReadable = character && !isControl(*character);
        readable += isReadable ? rest.substr(0, rest.size() - name.size()) : replacement;
    }
    return readable;
}

} // namespace quarner
