// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/util/MultiMedia.h"

#include <array>
#include <cstdio>
#include <optional>
#include <utility>

#include "quarner/platform/Platform.h"
#include "quarner/platform/Texts.h"
#include "quarner/util/SizeFormat.h"

namespace quarner {
namespace {

constexpr double kilo = 1024.0;

/// The host's translation of a format where it is one for the argument, otherwise the key itself.
SizeFormat translated(const std::string& key, char kind) {
    const std::string translation = currentPlatform()->text->localizedString(key);
    if (std::optional<SizeFormat> format = SizeFormat::parse(translation, kind))
        return *std::move(format);
    return SizeFormat::parse(key, kind).value_or(SizeFormat());
}

std::string kilobyteForm(double number) {
    // TRANSLATORS: A size of a file. %.0f stands for a whole number, %@ for a number as text.
    return translated(translatable("%.0f KB"), 'f').withNumber(number, *currentPlatform()->text);
}

std::string unitForm(const std::string& key, const std::string& number) {
    return translated(key, '@').withText(number);
}

/// Drops characters of UTF-8 text, not bytes: a decimal separator may have several bytes.
void dropLast(std::string& text, int characters) {
    for (; characters > 0 && !text.empty(); --characters) {
        while (text.size() > 1 && (static_cast<unsigned char>(text.back()) & 0xC0U) == 0x80U)
            text.pop_back();
        text.pop_back();
    }
}

bool endsInZero(const std::string& text) { return !text.empty() && text.back() == '0'; }

/// "1.0" gives "1".
std::string trimmedToTenths(double number) {
    std::string text = currentPlatform()->text->localizedNumber(number, 1);
    if (endsInZero(text))
        dropLast(text, 2);
    return text;
}

/// "1.10" gives "1.1", "1.00" gives "1".
std::string trimmedToHundredths(double number) {
    std::string text = currentPlatform()->text->localizedNumber(number, 2);
    if (endsInZero(text))
        dropLast(text, 1);
    if (endsInZero(text))
        dropLast(text, 2);
    return text;
}

} // namespace

std::string MultiMedia::stringWithDuration(std::int64_t duration, bool framesEnabled) {
    const std::int64_t hours = duration / 60 / 60;
    const std::int64_t minutes = duration / 60 - hours * 60;
    const auto seconds = static_cast<std::int64_t>(static_cast<double>(duration) -
                                                   static_cast<double>(minutes) * 60.0 -
                                                   static_cast<double>(hours * 3600));
    std::array<char, 96> text = {};
    std::snprintf(text.data(), text.size(), "%02.0f:%02.0f:%02.0f", static_cast<double>(hours),
                  static_cast<double>(minutes), static_cast<double>(seconds));
    // A duration is a whole number of seconds: the field of its fraction is always zero.
    return std::string(text.data()) + (framesEnabled ? ".00" : "");
}

std::string MultiMedia::stringWithFilesize(std::int64_t size) {
    const auto bytes = static_cast<double>(size);
    if (bytes < kilo)
        return kilobyteForm(size > 0 ? 4.0 : bytes);
    if (bytes < kilo * kilo)
        return kilobyteForm(bytes / kilo);
    if (bytes < kilo * kilo * kilo)
        return unitForm(translatable("%@ MB"), trimmedToTenths(bytes / kilo / kilo));
    if (bytes < kilo * kilo * kilo * kilo)
        return unitForm(translatable("%@ GB"), trimmedToHundredths(bytes / kilo / kilo / kilo));
    if (bytes < kilo * kilo * kilo * kilo * kilo)
        return unitForm(translatable("%@ TB"),
                        trimmedToHundredths(bytes / kilo / kilo / kilo / kilo));
    return kilobyteForm(0.0);
}

} // namespace quarner
