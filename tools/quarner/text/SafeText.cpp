// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/SafeText.h"

#include <glib.h>

#include <algorithm>

namespace quarner::cli {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::string_view ellipsis = "...";

/// Bidirectional marks, line separators and the like have no picture, but effects.
bool isHarmful(gunichar character) {
    switch (g_unichar_type(character)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_LINE_SEPARATOR:
    case G_UNICODE_PARAGRAPH_SEPARATOR:
        return true;
    case G_UNICODE_FORMAT:
        return character != 0x200C && character != 0x200D; // the joiners belong to words and emoji
    default:
        return false;
    }
}

std::size_t columnsOf(gunichar character) {
    if (g_unichar_iszerowidth(character) != FALSE)
        return 0;
    return g_unichar_iswide(character) != FALSE ? 2 : 1;
}

/// The first character of a text that is not empty, and how many bytes it takes; an invalid
/// byte counts as one character of its own.
struct Character {
    gunichar code;
    std::size_t bytes;
    bool isValid;
};

Character firstCharacter(std::string_view text) {
    const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    const bool isValid = code < 0x110000;
    if (!isValid || code == 0)
        return {0, 1, false};
    return {code, static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)), true};
}

/// The longest beginning of a safe text that takes at most `columns` columns.
std::string_view beginning(std::string_view text, std::size_t columns) {
    std::size_t taken = 0;
    std::size_t bytes = 0;
    while (bytes < text.size()) {
        const Character next = firstCharacter(text.substr(bytes));
        taken += columnsOf(next.code);
        if (taken > columns)
            break;
        bytes += next.bytes;
    }
    return text.substr(0, bytes);
}

} // namespace

std::string safeText(std::string_view text) {
    std::string safe;
    while (!text.empty()) {
        const Character next = firstCharacter(text);
        safe += next.isValid && !isHarmful(next.code) ? text.substr(0, next.bytes) : replacement;
        text.remove_prefix(next.bytes);
    }
    return safe;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const Character next = firstCharacter(text);
        width += columnsOf(next.code);
        text.remove_prefix(next.bytes);
    }
    return width;
}

std::string shortened(std::string_view text, std::size_t columns) {
    if (displayWidth(text) <= columns)
        return std::string(text);
    if (columns <= ellipsis.size())
        return std::string(beginning(text, columns));
    return std::string(beginning(text, columns - ellipsis.size())).append(ellipsis);
}

std::string leftAligned(std::string_view text, std::size_t columns) {
    std::string cut = shortened(text, columns);
    return cut.append(columns - displayWidth(cut), ' ');
}

std::string rightAligned(std::string_view text, std::size_t columns) {
    std::string cut = shortened(text, columns);
    return cut.insert(0, columns - displayWidth(cut), ' ');
}

} // namespace quarner::cli
