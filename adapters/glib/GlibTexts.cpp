// SPDX-License-Identifier: LGPL-2.1-or-later
#include <libintl.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "adapters/glib/GlibPointers.h"
#include "adapters/glib/GlibServices.h"
#include "adapters/glib/UserLocale.h"
#include "quarner/display.h"

namespace quarner {
namespace {

constexpr int mostDecimals = 64;
constexpr char libraryDomain[] = "quarner";

int sign(int comparison) { return (comparison > 0) - (comparison < 0); }

/// The comparison key of a text: three keys, each of which decides if the earlier ones are equal.
/// Comparing them in turn is a strict weak order for any bytes.
class FoldedText {
public:
    explicit FoldedText(const std::string& text) {
        const auto length = static_cast<gssize>(text.size());
        if (!g_utf8_validate(text.data(), length, nullptr))
            _invalidBytes = text;
        const GText valid(g_utf8_make_valid(text.data(), length));
        const GText folded(g_utf8_casefold(valid.get(), -1));
        const GText normal(g_utf8_normalize(folded.get(), -1, G_NORMALIZE_ALL_COMPOSE));
        _characters.reset(g_utf8_to_ucs4_fast(normal.get(), -1, nullptr));
        _normal = normal.get();
    }

    int compare(const FoldedText& other, const UserLocale& locale) const {
        if (const int order = locale.collate(_characters.get(), other._characters.get()))
            return order;
        if (const int order = sign(_normal.compare(other._normal)))
            return order;
        return sign(_invalidBytes.compare(other._invalidBytes));
    }

private:
    GMemory<gunichar> _characters;
    std::string _normal;
    std::string _invalidBytes; // only for a text that is not UTF-8
};

class GlibTextService : public TextService {
public:
    GlibTextService() { bindTranslations(); }

    int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) override {
        return FoldedText(a).compare(FoldedText(b), _locale);
    }

    std::string localizedNumber(double number, int decimals) override {
        constexpr int mostDigits = std::numeric_limits<double>::max_exponent10 + 1;
        std::array<char, mostDigits + mostDecimals + 8> digits = {};
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), number,
                          std::chars_format::fixed, std::clamp(decimals, 0, mostDecimals));
        std::string text(digits.data(), end.ptr);
        if (const std::size_t point = text.find('.'); point != std::string::npos)
            text.replace(point, 1, _locale.decimalSeparator());
        return text;
    }

    std::string localizedString(const std::string& key) override {
        // The translation of an empty key is the header of the catalogue.
        return key.empty() ? key : dgettext(nullptr, key.c_str());
    }

    std::string displayText(const std::string& text) override { return safeText(text); }

    std::string libraryText(const std::string& message) override {
        return message.empty() ? message : dgettext(libraryDomain, message.c_str());
    }

    std::string libraryTextForCount(const std::string& one, const std::string& many,
                                    std::uint64_t count) override {
        // Rules look at the last digits only.
        constexpr std::uint64_t most = 1'000'000'000;
        const auto number = static_cast<unsigned long>(count < most ? count : most + count % most);
        return dngettext(libraryDomain, one.c_str(), many.c_str(), number);
    }

private:
    const UserLocale _locale;
};

} // namespace

std::shared_ptr<TextService> makeGlibTextService() { return std::make_shared<GlibTextService>(); }

} // namespace quarner
