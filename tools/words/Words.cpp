// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/words/Words.h"

#include <libintl.h>

#include <clocale>

#include "quarner/display.h"

namespace quarner::words {
namespace {

constexpr char domain[] = "quarner";

std::string filled(const char* message, TextValues values) {
    return withValues(message, values, [](const std::string& value) { return safeText(value); });
}

} // namespace

void useLanguageOfUser() {
    std::setlocale(LC_ALL, ""); // NOLINT(concurrency-mt-unsafe): no other thread is there yet
    textdomain(domain);
    bindTranslations();
}

std::string _(const char* message, TextValues values) {
    // The translation of an empty message is the header of the catalogue.
    return *message == '\0' ? "" : filled(dgettext(domain, message), values);
}

std::string counted(const char* one, const char* many, std::uint64_t count, TextValues values) {
    const std::string message =
        filled(dngettext(domain, one, many, count), {{"count", std::to_string(count)}});
    return filled(message.c_str(), values);
}

} // namespace quarner::words
