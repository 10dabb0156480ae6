// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>
#include <locale.h>

#include <string>

namespace quarner {

/// The locale that the environment named at construction, category by category; the C locale if it
/// is not installed. Any thread.
class UserLocale {
public:
    UserLocale();
    ~UserLocale();
    UserLocale(const UserLocale&) = delete;
    UserLocale& operator=(const UserLocale&) = delete;

    /// Returns a number below 0, 0 or above 0 if `a` sorts before, with or after `b`. Both are
    /// UCS-4 texts that end with 0.
    int collate(const gunichar* a, const gunichar* b) const;

    const std::string& decimalSeparator() const { return _decimalSeparator; } ///< UTF-8

private:
    const locale_t _collation;
    const std::string _decimalSeparator;
};

} // namespace quarner
