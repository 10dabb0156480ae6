// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/TextService.h"

namespace quarner {

TextService::~TextService() = default;

std::string TextService::displayText(const std::string& text) { return text; }

std::string TextService::libraryText(const std::string& message) { return message; }

std::string TextService::libraryTextForCount(const std::string& one, const std::string& many,
                                             std::uint64_t count) {
    return count == 1 ? one : many;
}

} // namespace quarner
