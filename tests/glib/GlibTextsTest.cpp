// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>

#include "adapters/glib/GlibServices.h"
#include "quarner/display.h"
#include "quarner/platform/Platform.h"
#include "quarner/util/MultiMedia.h"

/// Read by LeakSanitizer. The C library's newlocale never frees its copy of LOCPATH, a variable
/// that only these tests set.
extern "C" QUARNER_EXPORT const char* __lsan_default_suppressions() {
    return "leak:__argz_add_sep\n";
}

namespace quarner {
namespace {

/// An environment that names a locale while the object exists.
class LocaleEnvironment {
public:
    explicit LocaleEnvironment(const char* locale) {
        setenv("LOCPATH", TEST_LOCALES, 1);
        setenv("LC_ALL", locale, 1);
        unsetenv("LANGUAGE");
    }
    ~LocaleEnvironment() {
        unsetenv("LC_ALL");
        unsetenv("LOCPATH");
    }
    LocaleEnvironment(const LocaleEnvironment&) = delete;
    LocaleEnvironment& operator=(const LocaleEnvironment&) = delete;
};

std::shared_ptr<TextService> textsIn(const char* locale) {
    const LocaleEnvironment environment(locale);
    return makeGlibTextService();
}

bool isBefore(TextService& text, const std::string& a, const std::string& b) {
    return text.compareLocalizedCaseInsensitive(a, b) < 0 &&
           text.compareLocalizedCaseInsensitive(b, a) > 0;
}

TEST(GlibTexts, CaseIsIgnoredInEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8", "de_DE.UTF-8", "sv_SE.UTF-8", "no_SUCH"}) {
        const auto text = textsIn(locale);
        EXPECT_TRUE(isBefore(*text, "A.mp3", "b.mp3")) << locale;
        EXPECT_TRUE(isBefore(*text, "a.mp3", "B.mp3")) << locale;
        EXPECT_EQ(text->compareLocalizedCaseInsensitive("SONG.MP3", "song.mp3"), 0) << locale;
        EXPECT_EQ(text->compareLocalizedCaseInsensitive("ÄRGER", "ärger"), 0) << locale;
        EXPECT_EQ(text->compareLocalizedCaseInsensitive("", ""), 0) << locale;
        EXPECT_TRUE(isBefore(*text, "", "a")) << locale;
    }
}

TEST(GlibTexts, LettersSortAsTheUsersLocaleHasThem) {
    const auto german = textsIn("de_DE.UTF-8");
    EXPECT_TRUE(isBefore(*german, "Äpfel", "Zebra"));
    EXPECT_TRUE(isBefore(*german, "Apfel", "Äpfel"));
    const auto swedish = textsIn("sv_SE.UTF-8");
    EXPECT_TRUE(isBefore(*swedish, "Zebra", "Äpfel"));
}

TEST(GlibTexts, TheLocaleOfTheProcessPlaysNoPartAndIsLeftAlone) {
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    const auto german = textsIn("de_DE.UTF-8");
    EXPECT_EQ(german->localizedNumber(1.5, 1), "1,5");
    EXPECT_TRUE(isBefore(*german, "Äpfel", "Zebra"));
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST(GlibTexts, ComposedAndDecomposedLettersAreTheSame) {
    EXPECT_EQ(textsIn("C")->compareLocalizedCaseInsensitive("\u00C4rger.mp3", "a\u0308rger.mp3"),
              0);
}

/// Names from a small alphabet of characters that are difficult to compare.
std::vector<std::string> awkwardNames() {
    const std::vector<std::string> parts = {
        "a", "A",      "b",  "ä", "a\u0308", "\xFF", "\xC3",     "\uFFFD",   "-",    " ",
        "🎵", "\u200B", "東", "ß", "ss",      "1",    "\xED\xA0", "\xF0\x9F", "\x01", "."};
    std::mt19937 random(7);
    std::vector<std::string> names = parts;
    names.emplace_back();
    names.emplace_back("a\0b", 3);
    while (names.size() < 70) {
        std::string name;
        for (int i = 0; i < 3; ++i)
            name += parts[random() % parts.size()];
        names.push_back(name);
    }
    return names;
}

int signOf(int value) { return (value > 0) - (value < 0); }

using OrderTable = std::vector<std::vector<int>>;

OrderTable orderOf(const std::vector<std::string>& names, TextService& text) {
    OrderTable order(names.size());
    for (std::size_t a = 0; a < names.size(); ++a)
        for (const std::string& b : names)
            order[a].push_back(signOf(text.compareLocalizedCaseInsensitive(names[a], b)));
    return order;
}

bool isTransitive(const OrderTable& order, std::size_t a, std::size_t b, std::size_t c) {
    const bool follow = order[a][b] <= 0 && order[b][c] <= 0;
    return !follow || order[a][c] == std::min(order[a][b], order[b][c]);
}

TEST(GlibTexts, TheOrderIsStrictAndWeakAlsoForInvalidUTF8) {
    const std::vector<std::string> names = awkwardNames();
    for (const char* locale : {"C", "de_DE.UTF-8"}) {
        const OrderTable order = orderOf(names, *textsIn(locale));
        for (std::size_t a = 0; a < names.size(); ++a) {
            EXPECT_EQ(order[a][a], 0);
            for (std::size_t b = 0; b < names.size(); ++b) {
                EXPECT_EQ(order[a][b], -order[b][a]);
                for (std::size_t c = 0; c < names.size(); ++c)
                    EXPECT_TRUE(isTransitive(order, a, b, c))
                        << locale << a << ' ' << b << ' ' << c;
            }
        }
    }
}

TEST(GlibTexts, NamesThatDifferInInvalidBytesAreNotTheSame) {
    const auto text = textsIn("de_DE.UTF-8");
    EXPECT_NE(text->compareLocalizedCaseInsensitive("\xFE.mp3", "\xFF.mp3"), 0);
    EXPECT_NE(text->compareLocalizedCaseInsensitive("\uFFFD.mp3", "\xFF.mp3"), 0);
}

TEST(GlibTexts, NumbersHaveTheUsersSeparatorAndNoGrouping) {
    const auto german = textsIn("de_DE.UTF-8");
    EXPECT_EQ(german->localizedNumber(1234567.891, 2), "1234567,89");
    EXPECT_EQ(german->localizedNumber(0.0, 0), "0");
    EXPECT_EQ(german->localizedNumber(-2.0, 2), "-2,00");
    const auto plain = textsIn("C");
    EXPECT_EQ(plain->localizedNumber(1234567.891, 2), "1234567.89");
    EXPECT_EQ(plain->localizedNumber(0.125, 2), "0.12"); // to even, as printf has it
    EXPECT_EQ(plain->localizedNumber(2.5, 0), "2");
}

TEST(GlibTexts, NumbersOfEverySizeAreWritten) {
    const auto text = textsIn("C");
    EXPECT_EQ(text->localizedNumber(1e300, 1).size(), 303U);
    EXPECT_EQ(text->localizedNumber(std::numeric_limits<double>::max(), 1000).substr(0, 3), "179");
    EXPECT_EQ(text->localizedNumber(-std::numeric_limits<double>::infinity(), 1), "-inf");
    EXPECT_EQ(text->localizedNumber(std::nan(""), 1), "nan");
    EXPECT_EQ(text->localizedNumber(1.5, -1), "2");
}

TEST(GlibTexts, SizesReadAsTheUserWritesNumbers) {
    installPlatform({.text = textsIn("de_DE.UTF-8")});
    EXPECT_EQ(MultiMedia::stringWithFilesize(1'572'864), "1,5 MB");
    EXPECT_EQ(MultiMedia::stringWithFilesize(std::int64_t{2} << 30), "2 GB");
    EXPECT_EQ(MultiMedia::stringWithFilesize(4'700'000'000), "4,38 GB");
    installPlatform({});
}

class GlibTranslations : public testing::Test {
protected:
    /// Sets up translations as a host does.
    GlibTranslations() {
        std::setlocale(LC_ALL, "");
        bindtextdomain("quarner-glib-tests", TEST_CATALOGUES);
        bind_textdomain_codeset("quarner-glib-tests", "UTF-8");
        textdomain("quarner-glib-tests");
    }
    ~GlibTranslations() override {
        textdomain("messages");
        std::setlocale(LC_ALL, "C");
    }

    const LocaleEnvironment _environment{"de_DE.UTF-8"};
    const std::shared_ptr<TextService> text = makeGlibTextService();
};

TEST_F(GlibTranslations, TextsComeFromTheHostsDefaultDomain) {
    EXPECT_EQ(text->localizedString("%@ MB"), "%@ Megabyte");
    EXPECT_EQ(text->localizedString("%.0f KB"), "%.0f Kilobyte für Sie");
}

TEST_F(GlibTranslations, WithoutATranslationTheKeyStandsForItself) {
    EXPECT_EQ(text->localizedString("%@ GB"), "%@ GB");
    EXPECT_EQ(text->localizedString(""), "");
    textdomain("no-such-domain");
    EXPECT_EQ(text->localizedString("%@ MB"), "%@ MB");
}

TEST_F(GlibTranslations, ATranslatedSizeFormatIsFilledInEverywhere) {
    installPlatform({.text = text});
    EXPECT_EQ(MultiMedia::stringWithFilesize(1'572'864), "1,5 Megabyte");
    EXPECT_EQ(MultiMedia::stringWithFilesize(1), "4 Kilobyte für Sie");
    EXPECT_EQ(MultiMedia::stringWithFilesize(0), "0 Kilobyte für Sie");
    EXPECT_EQ(MultiMedia::stringWithFilesize(std::int64_t{1} << 50), "0 Kilobyte für Sie");
    EXPECT_EQ(MultiMedia::stringWithFilesize(std::int64_t{1} << 30), "1 GB");
    installPlatform({});
}

TEST_F(GlibTranslations, TheMessagesOfTheLibraryAreFoundBesideIt) {
    EXPECT_EQ(text->libraryText("The burn was cancelled."), "Der Brennvorgang wurde abgebrochen.");
    EXPECT_EQ(text->libraryTextForCount("{count} file", "{count} files", 2), "{count} Dateien");
    EXPECT_EQ(text->libraryText("No such message."), "No such message.");
    EXPECT_EQ(text->libraryText(""), "");
}

TEST_F(GlibTranslations, ACatalogueThatTheHostHasBoundStaysBound) {
    bindtextdomain("quarner", TEST_CATALOGUES);
    bindTranslations();
    EXPECT_STREQ(bindtextdomain("quarner", nullptr), TEST_CATALOGUES);
    EXPECT_EQ(text->libraryText("The burn was cancelled."), "The burn was cancelled.");
}

TEST(GlibTexts, SeveralThreadsMayUseThemAtOnce) {
    const auto text = textsIn("de_DE.UTF-8");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 50; ++n) {
                EXPECT_EQ(text->localizedNumber(n + 0.5, 1), std::to_string(n) + ",5");
                EXPECT_TRUE(isBefore(*text, "A.mp3", "b.mp3"));
                EXPECT_EQ(text->localizedString("a key"), "a key");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace quarner
