// SPDX-License-Identifier: LGPL-2.1-or-later
#include <glib.h>

#include "quarner/display.h"

namespace quarner {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

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

} // namespace quarner
