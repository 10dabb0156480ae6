// SPDX-License-Identifier: LGPL-2.1-or-later
#include <array>
#include <cstdio>
#include <memory>

#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "quarner/platform/Platform.h"
#include "quarner/util/MultiMedia.h"

namespace quarner::fuzz {
namespace {

/// A translation and a decimal separator that nobody has looked at.
class HostileTexts : public TextService {
public:
    std::string translation;
    std::string separator;

    int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) override {
        return a.compare(b);
    }
    std::string localizedNumber(double number, int decimals) override {
        std::array<char, 512> text = {};
        std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
        std::string localized = text.data();
        if (const std::size_t point = localized.find('.'); point != std::string::npos)
            localized.replace(point, 1, separator);
        return localized;
    }
    std::string localizedString(const std::string& /*key*/) override { return translation; }
};

HostileTexts& installedTexts() {
    static const auto texts = [] {
        auto made = std::make_shared<HostileTexts>();
        installPlatform({.text = made});
        return made;
    }();
    return *texts;
}

} // namespace
} // namespace quarner::fuzz

/// A size, the decimal separator, and the translation of its format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    fuzz::Input input(data, size);
    const auto number = input.number<std::int64_t>();
    fuzz::HostileTexts& texts = fuzz::installedTexts();
    texts.separator = input.text();
    texts.translation = input.rest();
    constexpr std::size_t longestNumber = 512;
    fuzz::require(MultiMedia::stringWithFilesize(number).size() <=
                      texts.translation.size() + texts.separator.size() + longestNumber,
                  "a translation cannot make a text much longer than itself");
    fuzz::require(MultiMedia::stringWithDuration(number, true) ==
                      MultiMedia::stringWithDuration(number, false) + ".00",
                  "the fraction of a duration is always zero");
    return 0;
}
