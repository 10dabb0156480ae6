// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/Columns.h"

#include <glib.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

constexpr std::string_view ellipsis = "...";

/// The longest beginning of a text that takes at most `columns` columns, and how many it takes.
std::pair<std::string_view, std::size_t> beginning(std::string_view text, std::size_t columns) {
    std::size_t taken = 0;
    const char* place = text.data();
    while (place < text.data() + text.size()) {
        const gunichar next = g_utf8_get_char(place);
        const std::size_t width = g_unichar_iszerowidth(next) != FALSE ? 0
                                  : g_unichar_iswide(next) != FALSE    ? 2
                                                                       : 1;
        if (taken + width > columns)
            break;
        taken += width;
        place = g_utf8_next_char(place);
    }
    return {text.substr(0, static_cast<std::size_t>(place - text.data())), taken};
}

std::string textOf(Label label) {
    switch (label) {
    case Label::None:
        return {};
    case Label::Drive:
        return _("Drive:");
    case Label::Disc:
        return _("Disc:");
    case Label::Title:
        return _("Title:");
    case Label::Used:
        return _("Used:");
    case Label::Free:
        return _("Free:");
    case Label::Speeds:
        return _("Speeds:");
    }
    return {};
}

} // namespace

std::size_t displayWidth(std::string_view text) { return beginning(text, SIZE_MAX).second; }

std::string shortened(std::string_view text, std::size_t columns) {
    if (displayWidth(text) <= columns)
        return std::string(text);
    if (columns <= ellipsis.size())
        return std::string(beginning(text, columns).first);
    return std::string(beginning(text, columns - ellipsis.size()).first).append(ellipsis);
}

std::string leftAligned(std::string_view text, std::size_t columns) {
    std::string cut = shortened(text, columns);
    return cut.append(columns - displayWidth(cut), ' ');
}

std::string rightAligned(std::string_view text, std::size_t columns) {
    std::string cut = shortened(text, columns);
    return cut.insert(0, columns - displayWidth(cut), ' ');
}

std::string labelled(Label label, std::string_view text) {
    std::size_t widest = 0;
    for (const Label each :
         {Label::Drive, Label::Disc, Label::Title, Label::Used, Label::Free, Label::Speeds})
        widest = std::max(widest, displayWidth(textOf(each)));
    return leftAligned(textOf(label), widest + 2).append(text);
}

} // namespace quarner::cli
