// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Texts in the user's language and locale. Every operation may be called on any thread.
class QUARNER_EXPORT TextService {
public:
    TextService() = default;
    virtual ~TextService();
    TextService(const TextService&) = delete;
    TextService& operator=(const TextService&) = delete;

    /// Compares two texts by the user's locale, ignoring case. Returns a number below 0, 0 or above
    /// 0 if `a` sorts before, with or after `b`. A strict weak order, also for bytes that are not
    /// valid UTF-8.
    virtual int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) = 0;

    /// Returns a number with `decimals` decimals ("%.*f") and the decimal separator of the user's
    /// locale, without grouping.
    virtual std::string localizedNumber(double number, int decimals) = 0;

    /// Returns the translation of a key in the host application's default string table, or the key
    /// itself if there is none.
    virtual std::string localizedString(const std::string& key) = 0;

    /// Returns a text from outside, such as a path, made safe to show: valid UTF-8 on one line. The
    /// default returns the text itself.
    virtual std::string displayText(const std::string& text);

    /// Returns one of this library's own messages, an English sentence, in the user's language. The
    /// default returns the message itself.
    virtual std::string libraryText(const std::string& message);

    /// Returns that of two messages which the count asks for, in the user's language, which may
    /// have other rules for it than English. The default returns `one` for 1, otherwise `many`.
    virtual std::string libraryTextForCount(const std::string& one, const std::string& many,
                                            std::uint64_t count);
};

} // namespace quarner
