// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/Texts.h"

#include <algorithm>

#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

std::string shownByPlatform(const std::string& value) {
    return currentPlatform()->text->displayText(value);
}

} // namespace

std::string withValues(std::string_view message, TextValues values,
                       const std::function<std::string(const std::string&)>& shown) {
    std::string result;
    while (!message.empty()) {
        const auto* const value =
            std::find_if(values.begin(), values.end(), [&](const auto& candidate) {
                return message.starts_with("{" + std::string(candidate.first) + "}");
            });
        const bool isName = value != values.end();
        result += isName ? shown(value->second) : std::string(1, message.front());
        message.remove_prefix(isName ? value->first.size() + 2 : 1);
    }
    return result;
}

std::string text(const char* message, TextValues values) {
    return withValues(currentPlatform()->text->libraryText(message), values, shownByPlatform);
}

std::string textForCount(const char* one, const char* many, std::uint64_t count,
                         TextValues values) {
    const std::string message = currentPlatform()->text->libraryTextForCount(one, many, count);
    const std::string counted =
        withValues(message, {{"count", std::to_string(count)}}, shownByPlatform);
    return withValues(counted, values, shownByPlatform);
}

} // namespace quarner
