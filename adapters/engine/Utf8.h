// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarner {

/// Takes the first character off a text that is not empty. Returns `std::nullopt`, and takes one
/// byte, if the text does not begin with valid UTF-8.
std::optional<char32_t> takeCharacter(std::string_view& text);

/// Returns whether a character is one of the control characters of ASCII.
bool isControl(char32_t character);

/// Returns a file name as valid UTF-8. Each invalid byte and each control character becomes U+FFFD.
std::string readableName(std::string_view name);

} // namespace quarner
