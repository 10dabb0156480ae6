// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "quarner/platform/Export.h"
/// @file
/// Messages for people. Each is a whole English sentence or phrase in the source, which the
/// translators find by the names `text`, `textForCount` and `translatable`.
namespace quarner {

/// The values for the names in braces of a message: "{file}".
using TextValues = std::initializer_list<std::pair<std::string_view, std::string>>;

/// Marks a message for the translators where `text` is given it later. Returns the message itself.
constexpr const char* translatable(const char* message) { return message; }

/// Returns a message of the library in the user's language, with the names in braces replaced by
/// their values, made safe to show. Any thread.
QUARNER_EXPORT std::string text(const char* message, TextValues values = {});

/// The same for a message that depends on a count, in the number that the language has for it.
/// "{count}" is the count.
QUARNER_EXPORT std::string textForCount(const char* one, const char* many, std::uint64_t count,
                                        TextValues values = {});

/// Returns a message with the names in braces replaced by what `shown` returns for their values.
/// Braces inside a value stay what they are, and so does a name that has no value.
QUARNER_EXPORT std::string withValues(std::string_view message, TextValues values,
                                      const std::function<std::string(const std::string&)>& shown);

} // namespace quarner
