// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedTexts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace quarner {
namespace {

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

} // namespace

ScriptedTexts::ScriptedTexts(std::shared_ptr<ScriptedContext> context)
    : _context(std::move(context)) {}

int ScriptedTexts::compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) {
    if (_context->fails(ServiceCall::CompareTexts, a))
        return 0;
    Collation collation;
    {
        const std::lock_guard lock(_mutex);
        collation = _collation;
    }
    return collation ? collation(a, b) : lowered(a).compare(lowered(b));
}

std::string ScriptedTexts::localizedNumber(double number, int decimals) {
    if (_context->fails(ServiceCall::LocalizedNumber))
        return {};
    std::array<char, 400> digits = {}; // the largest number has 309 of them before the point
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::fixed, decimals);
    std::string text(digits.data(), end.ptr);
    const std::lock_guard lock(_mutex);
    if (const std::size_t point = text.find('.'); point != std::string::npos)
        text.replace(point, 1, _separator);
    return text;
}

std::string ScriptedTexts::localizedString(const std::string& key) {
    if (_context->fails(ServiceCall::LocalizedString, key))
        return key;
    const std::lock_guard lock(_mutex);
    const auto entry = _table.find(key);
    return entry == _table.end() ? key : entry->second;
}

void ScriptedTexts::setText(const std::string& key, const std::string& translation) {
    const std::lock_guard lock(_mutex);
    _table.insert_or_assign(key, translation);
}

void ScriptedTexts::setDecimalSeparator(const std::string& separator) {
    const std::lock_guard lock(_mutex);
    _separator = separator;
}

void ScriptedTexts::setCollation(Collation collation) {
    const std::lock_guard lock(_mutex);
    _collation.swap(collation);
}

void ScriptedLog::log(const std::string& line) {
    const std::lock_guard lock(_mutex);
    _lines.push_back(line);
}

std::vector<std::string> ScriptedLog::lines() const {
    const std::lock_guard lock(_mutex);
    return _lines;
}

} // namespace quarner
