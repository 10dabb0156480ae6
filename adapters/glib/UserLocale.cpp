// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/UserLocale.h"

#include <langinfo.h>
#include <wchar.h>

#include "adapters/glib/GlibPointers.h"

namespace quarner {
namespace {

locale_t localeOfEnvironment(int categories) {
    const locale_t locale = newlocale(categories, "", nullptr);
    return locale != nullptr ? locale : newlocale(categories, "C", nullptr);
}

std::string separatorOfEnvironment() {
    const locale_t locale = localeOfEnvironment(LC_NUMERIC_MASK | LC_CTYPE_MASK);
    const GText separator(g_convert(nl_langinfo_l(RADIXCHAR, locale), -1, "UTF-8",
                                    nl_langinfo_l(CODESET, locale), nullptr, nullptr, nullptr));
    freelocale(locale);
    return separator && *separator ? separator.get() : ".";
}

static_assert(sizeof(wchar_t) == sizeof(gunichar)); // the C library's wide characters are UCS-4

} // namespace

UserLocale::UserLocale()
    : _collation(localeOfEnvironment(LC_COLLATE_MASK | LC_CTYPE_MASK)),
      _decimalSeparator(separatorOfEnvironment()) {}

UserLocale::~UserLocale() { freelocale(_collation); }

int UserLocale::collate(const gunichar* a, const gunichar* b) const {
    return wcscoll_l(reinterpret_cast<const wchar_t*>(a), reinterpret_cast<const wchar_t*>(b),
                     _collation);
}

} // namespace quarner
