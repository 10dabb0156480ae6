// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietNames.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "adapters/engine/Utf8.h"

namespace quarner {
namespace {

constexpr std::size_t extensionLimit = 17; // including its dot

std::size_t unitsOf(char32_t character) { return character > 0xFFFF ? 2 : 1; }

std::size_t unitsOf(std::u32string_view text) {
    std::size_t units = 0;
    for (const char32_t character : text)
        units += unitsOf(character);
    return units;
}

/// Decodes UTF-8; every byte that is not part of a valid character becomes an underscore.
std::u32string decoded(const std::string& text) {
    std::u32string characters;
    for (std::string_view rest = text; !rest.empty();)
        characters += takeCharacter(rest).value_or(U'\0');
    std::replace(characters.begin(), characters.end(), U'\0', U'_');
    return characters;
}

std::string encoded(std::u32string_view characters) {
    std::string text;
    for (const char32_t character : characters) {
        char bytes[6];
        text.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(character, bytes)));
    }
    return text;
}

bool isLegalInName(char32_t character) {
    constexpr std::u32string_view forbidden = U"*/:;?\\";
    return !isControl(character) && forbidden.find(character) == std::u32string_view::npos;
}

std::u32string cut(std::u32string_view text, std::size_t units) {
    while (unitsOf(text) > units)
        text.remove_suffix(1);
    return std::u32string(text);
}

struct Name {
    std::u32string stem;
    std::u32string extension; // with its dot
};

Name parted(const std::u32string& name) {
    const std::size_t dot = name.find_last_of(U'.');
    if (dot == std::u32string::npos || dot == 0 ||
        unitsOf(std::u32string_view(name).substr(dot)) > extensionLimit)
        return {name, {}};
    return {name.substr(0, dot), name.substr(dot)};
}

/// Returns the name, shortened to the limit, with `mark` between stem and extension.
std::string composed(const Name& name, const std::u32string& mark) {
    const std::size_t limit = jolietNameLimit - unitsOf(name.extension) - unitsOf(mark);
    return encoded(cut(name.stem, limit) + mark + name.extension);
}

Name legalName(const std::string& fileName) {
    std::u32string characters = decoded(fileName);
    for (char32_t& character : characters)
        if (!isLegalInName(character))
            character = U'_';
    return parted(characters.empty() ? U"_" : characters);
}

/// Names with the same key are equal to a reader that ignores case.
std::string keyOf(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> normal(
        g_utf8_normalize(name.c_str(), -1, G_NORMALIZE_NFC), g_free);
    const std::unique_ptr<char, decltype(&g_free)> folded(g_utf8_casefold(normal.get(), -1),
                                                          g_free);
    return folded.get();
}

std::u32string numberMark(unsigned number) {
    const std::string digits = std::to_string(number);
    return U" (" + std::u32string(digits.begin(), digits.end()) + U")";
}

/// The set of the names in use.
class NameBook {
public:
    bool take(const std::string& name) { return _taken.insert(keyOf(name)).second; }

    std::string takeNumbered(const Name& name) {
        unsigned& last = _lastNumbers.try_emplace(keyOf(composed(name, {})), 1).first->second;
        std::string numbered;
        do
            numbered = composed(name, numberMark(++last));
        while (!take(numbered));
        return numbered;
    }

private:
    std::unordered_set<std::string> _taken;
    std::unordered_map<std::string, unsigned> _lastNumbers;
};

} // namespace

std::vector<std::string> jolietNames(const std::vector<std::string>& fileNames) {
    NameBook book;
    std::vector<Name> legal;
    std::vector<std::string> names;
    for (const std::string& fileName : fileNames) {
        legal.push_back(legalName(fileName));
        std::string name = composed(legal.back(), {});
        names.push_back(book.take(name) ? std::move(name) : std::string());
    }
    // Only after every file without a clash has its name, so that a number does not take another
    // file's name.
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i].empty())
            names[i] = book.takeNumbered(legal[i]);
    return names;
}

std::string volumeName(const std::string& discName) {
    std::u32string characters = decoded(discName);
    for (char32_t& character : characters)
        if (isControl(character))
            character = U'_';
    return encoded(characters);
}

} // namespace quarner
