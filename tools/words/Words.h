// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/Texts.h"

/// What a program says to people, in the user's language. Unlike the library's `text`, it needs no
/// platform, so help and usage errors are translated too. The translators find a message by the
/// names `_`, `counted` and `translatable`. A source says `using words::_;`.
namespace quarner::words {

/// Makes the user's language that of the process and of its messages. Call it before there is
/// another thread.
void useLanguageOfUser();

/// Returns a message in the user's language, with the names in braces replaced by their values,
/// made safe to show. Any thread.
std::string _(const char* message, TextValues values = {});

/// The same for a message that depends on a count, in the number that the language has for it.
/// "{count}" is the count.
std::string counted(const char* one, const char* many, std::uint64_t count, TextValues values = {});

} // namespace quarner::words
