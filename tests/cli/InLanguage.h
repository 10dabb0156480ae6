// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <libintl.h>

#include <clocale>
#include <cstdlib>

namespace quarner::cli {

/// The messages of the program in the language of a locale, from these catalogues, for as long as
/// this object lives.
class InLanguage {
public:
    InLanguage(const char* locale, const char* catalogues) {
        setenv("LOCPATH", TEST_LOCALES, 1);
        unsetenv("LANGUAGE");
        std::setlocale(LC_ALL, locale);
        bindtextdomain("quarner", catalogues);
        bind_textdomain_codeset("quarner", "UTF-8");
    }
    ~InLanguage() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    InLanguage(const InLanguage&) = delete;
    InLanguage& operator=(const InLanguage&) = delete;
};

} // namespace quarner::cli
