// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/util/SizeFormat.h"

#include <algorithm>

namespace quarner {
namespace {

constexpr std::size_t mostWidth = 99;
constexpr std::size_t mostPrecision = 64;
constexpr std::size_t usualPrecision = 6;

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

/// Characters of UTF-8 text, not bytes.
std::size_t lengthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::string firstCharacters(const std::string& text, std::size_t count) {
    std::size_t seen = 0;
    const auto end = std::find_if(text.begin(), text.end(), [&](char byte) {
        return beginsCharacter(byte) && ++seen > count;
    });
    return {text.begin(), end};
}

} // namespace

/// Reads one conversion from what follows its percent sign.
class SizeFormat::Parser {
public:
    explicit Parser(std::string_view rest) : _rest(rest) {}

    std::optional<Conversion> conversionOf(char kind) {
        if (!takePosition())
            return std::nullopt;
        while (takeFlag())
            ;
        const std::optional<std::size_t> width = takeNumber(mostWidth);
        if (!width)
            return std::nullopt;
        _conversion.width = *width;
        if (take('.') && !(_conversion.precision = takeNumber(mostPrecision)))
            return std::nullopt;
        return take(kind) ? std::optional(_conversion) : std::nullopt;
    }
    std::string_view rest() const { return _rest; }

private:
    bool take(char wanted) {
        const bool isThere = _rest.substr(0, 1) == std::string_view(&wanted, 1);
        _rest.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }

    /// 0 where there are no digits; nothing for a number beyond the limit.
    std::optional<std::size_t> takeNumber(std::size_t limit) {
        std::size_t number = 0;
        for (; !_rest.empty() && _rest.front() >= '0' && _rest.front() <= '9';
             _rest.remove_prefix(1)) {
            number = number * 10 + static_cast<std::size_t>(_rest.front() - '0');
            if (number > limit)
                return std::nullopt;
        }
        return number;
    }

    /// False for the position of another argument. Digits without a `$` are no position.
    bool takePosition() {
        const std::string_view start = _rest;
        const std::size_t dollar = _rest.find_first_not_of("0123456789");
        const bool hasPosition =
            dollar != 0 && dollar != std::string_view::npos && _rest[dollar] == '$';
        if (!hasPosition)
            return true;
        _rest.remove_prefix(dollar + 1);
        const std::string_view digits = start.substr(0, dollar);
        const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
        return digits.substr(zeros) == "1";
    }

    bool takeFlag() {
        if (take('-'))
            return _conversion.isLeftAligned = true;
        if (take('+'))
            return _conversion.hasPlus = true;
        if (take(' '))
            return _conversion.hasBlank = true;
        if (take('0'))
            return _conversion.hasZeros = true;
        return take('\'') || take('#');
    }

    std::string_view _rest;
    Conversion _conversion;
};

std::optional<SizeFormat> SizeFormat::parse(std::string_view format, char kind) {
    SizeFormat parsed;
    bool hasConversion = false;
    while (!format.empty()) {
        std::string& text = hasConversion ? parsed._after : parsed._before;
        const char next = format.front();
        format.remove_prefix(1);
        if (next == '%' && format.substr(0, 1) == "%") {
            format.remove_prefix(1);
        } else if (next == '%') {
            Parser parser(format);
            if (const std::optional<Conversion> conversion = parser.conversionOf(kind)) {
                if (hasConversion)
                    return std::nullopt;
                hasConversion = true;
                parsed._conversion = *conversion;
                format = parser.rest();
                continue;
            }
        }
        text += next;
    }
    return hasConversion ? std::optional(std::move(parsed)) : std::nullopt;
}

std::string SizeFormat::withNumber(double number, TextService& text) const {
    const std::size_t precision = _conversion.precision.value_or(usualPrecision);
    std::string digits = text.localizedNumber(number, static_cast<int>(precision));
    std::string sign;
    if (digits.starts_with('-')) {
        sign = "-";
        digits.erase(0, 1);
    } else if (_conversion.hasPlus) {
        sign = "+";
    } else if (_conversion.hasBlank) {
        sign = " ";
    }
    return placed(sign, digits, _conversion.hasZeros);
}

std::string SizeFormat::withText(const std::string& argument) const {
    const std::size_t length = _conversion.precision.value_or(argument.size());
    return placed({}, firstCharacters(argument, length), false);
}

std::string SizeFormat::placed(const std::string& sign, const std::string& argument,
                               bool hasZeros) const {
    const std::size_t length = lengthOf(sign) + lengthOf(argument);
    const std::size_t missing = _conversion.width > length ? _conversion.width - length : 0;
    if (_conversion.isLeftAligned)
        return _before + sign + argument + std::string(missing, ' ') + _after;
    if (hasZeros)
        return _before + sign + std::string(missing, '0') + argument + _after;
    return _before + std::string(missing, ' ') + sign + argument + _after;
}

} // namespace quarner
