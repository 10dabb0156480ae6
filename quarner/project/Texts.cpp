// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/Texts.h"

#include <algorithm>

#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

/// In one pass from left to right, so that braces inside a value stay what they are.
std::string withValues(const std::string& message, TextValues values) {
    std::string result;
    std::size_t place = 0;
    while (place < message.size()) {
        const std::string_view rest = std::string_view(message).substr(place);
        const auto* const value =
            std::find_if(values.begin(), values.end(), [&](const auto& candidate) {
                return rest.starts_with("{" + std::string(candidate.first) + "}");
            });
        if (value == values.end()) {
            result += message[place++];
            continue;
        }
        result += currentPlatform()->text->displayText(value->second);
        place += value->first.size() + 2;
    }
    return result;
}

} // namespace

std::string text(const char* message, TextValues values) {
    return withValues(currentPlatform()->text->libraryText(message), values);
}

std::string textForCount(const char* one, const char* many, std::uint64_t count,
                         TextValues values) {
    const std::string message = currentPlatform()->text->libraryTextForCount(one, many, count);
    const std::string number = std::to_string(count);
    return withValues(withValues(message, {{"count", number}}), values);
}

} // namespace quarner
