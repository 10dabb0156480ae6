// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace quarner {

/// The values for the names in braces of a message: "{file}".
using TextValues = std::initializer_list<std::pair<std::string_view, std::string>>;

/// Returns a message of the library in the user's language, with the names in braces replaced by
/// their values. Any thread.
std::string text(const char* message, TextValues values = {});

/// The same for a message that depends on a count, in the number that the language has for it.
/// "{count}" is the count.
std::string textForCount(const char* one, const char* many, std::uint64_t count,
                         TextValues values = {});

} // namespace quarner
