// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>
#include <locale.h>

#include <string>

namespace quarner {

/// The locale that the environment named when this was made, category by category; the C locale
/// where that one is not installed. Any thread.
class UserLocale {
public:
    UserLocale();
    ~UserLocale();
    UserLocale(const UserLocale&) = delete;
    UserLocale& operator=(const UserLocale&) = delete;

    /// Below 0, 0 or above 0 as one text in UCS-4, ended by 0, sorts before, with or after another.
    int collate(const gunichar* a, const gunichar* b) const;

    const std::string& decimalSeparator() const { return _decimalSeparator; } ///< UTF-8

private:
    const locale_t _collation;
    const std::string _decimalSeparator;
};

} // namespace quarner
