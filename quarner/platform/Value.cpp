// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace quarner {
namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

std::int64_t truncatedToInt64(double number) {
    if (std::isnan(number))
        return 0;
    if (number >= twoTo63)
        return std::numeric_limits<std::int64_t>::max();
    if (number <= -twoTo63)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(number);
}

std::uint64_t truncatedToUInt64(double number) {
    if (!(number > 0.0))
        return 0;
    if (number >= twoTo64)
        return std::numeric_limits<std::uint64_t>::max();
    return static_cast<std::uint64_t>(number);
}

std::string descriptionOf(double number) {
    std::array<char, 400> text = {}; // the largest number has 309 digits before the point
    constexpr int decimals = 6;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number,
                                      std::chars_format::fixed, decimals);
    return {text.data(), result.ptr};
}

std::string quoted(const std::string& text) { return '"' + text + '"'; }

std::string descriptionOf(const Array& list) {
    std::string text = "(";
    for (const Value& element : list) {
        if (text.size() > 1)
            text += ", ";
        text += element.description();
    }
    return text + ')';
}

std::string descriptionOf(const Dictionary& dictionary) {
    std::string text = "{";
    for (const auto& [key, value] : dictionary)
        text += key + " = " + value.description() + "; ";
    if (text.size() > 1)
        text.pop_back();
    return text + '}';
}

std::string descriptionOf(const Icon& icon) {
    return icon.names.empty() ? std::string("<no icon>") : "<icon " + icon.names.front() + '>';
}

} // namespace

Value::Value(Dictionary dictionary)
    : _value(std::make_shared<const Dictionary>(std::move(dictionary))) {}

bool Value::isNull() const { return std::holds_alternative<std::monostate>(_value); }

bool Value::isNumber() const {
    return std::holds_alternative<bool>(_value) || std::holds_alternative<std::int64_t>(_value) ||
           std::holds_alternative<double>(_value);
}

bool Value::asBool() const { return asDouble() != 0.0; }

std::int64_t Value::asInt64() const {
    if (const auto* truth = std::get_if<bool>(&_value))
        return *truth ? 1 : 0;
    if (const auto* whole = std::get_if<std::int64_t>(&_value))
        return *whole;
    if (const auto* real = std::get_if<double>(&_value))
        return truncatedToInt64(*real);
    return 0;
}

std::uint64_t Value::asUInt64() const {
    if (const auto* real = std::get_if<double>(&_value))
        return truncatedToUInt64(*real);
    return static_cast<std::uint64_t>(asInt64());
}

std::uint32_t Value::asUInt32() const {
    if (const auto* real = std::get_if<double>(&_value)) {
        constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
        return static_cast<std::uint32_t>(std::min(truncatedToUInt64(*real), largest));
    }
    return static_cast<std::uint32_t>(asInt64());
}

double Value::asDouble() const {
    if (const auto* real = std::get_if<double>(&_value))
        return *real;
    return static_cast<double>(asInt64());
}

float Value::asFloat() const {
    const double number = asDouble();
    constexpr double largest = std::numeric_limits<float>::max();
    if (number > largest)
        return std::numeric_limits<float>::infinity();
    if (number < -largest)
        return -std::numeric_limits<float>::infinity();
    return static_cast<float>(number);
}

const std::string* Value::asString() const { return std::get_if<std::string>(&_value); }

const Array* Value::asArray() const { return std::get_if<Array>(&_value); }

const Dictionary* Value::asDictionary() const {
    const auto* dictionary = std::get_if<std::shared_ptr<const Dictionary>>(&_value);
    return dictionary == nullptr ? nullptr : dictionary->get();
}

const Icon* Value::asIcon() const { return std::get_if<Icon>(&_value); }

bool Value::operator==(const Value& other) const {
    const Dictionary* mine = asDictionary();
    const Dictionary* theirs = other.asDictionary();
    if (mine != nullptr && theirs != nullptr)
        return *mine == *theirs;
    return _value == other._value;
}

std::string Value::description() const {
    if (const auto* truth = std::get_if<bool>(&_value))
        return *truth ? "true" : "false";
    if (const auto* whole = std::get_if<std::int64_t>(&_value))
        return std::to_string(*whole);
    if (const auto* real = std::get_if<double>(&_value))
        return descriptionOf(*real);
    if (const std::string* text = asString())
        return quoted(*text);
    if (const Array* list = asArray())
        return descriptionOf(*list);
    if (const Dictionary* dictionary = asDictionary())
        return descriptionOf(*dictionary);
    if (const Icon* icon = asIcon())
        return descriptionOf(*icon);
    return "null";
}

const Value& valueFor(const Dictionary& dictionary, std::string_view key) {
    static const Value nothing;
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nothing : entry->second;
}

} // namespace quarner
