// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "quarner/platform/TextService.h"

namespace quarner {

/// A printf-style format with one conversion: `%f` for a number or `%@` for a text, with the
/// position `1$`, flags, a width and a precision as printf has them. `%%` is a percent sign, and
/// everything else stands for itself.
///
/// Formats come from translators, so any bytes are accepted, and the result is never longer than
/// the format, the argument and 99 characters. The flags `'` and `#` have no effect.
class SizeFormat {
public:
    /// Returns `std::nullopt` unless `format` has exactly one conversion of the kind, `f` or `@`.
    /// A conversion does not count if its position is not 1, its width is above 99, its precision
    /// is above 64, or either of the two is taken from an argument (`*`).
    static std::optional<SizeFormat> parse(std::string_view format, char kind);

    std::string withNumber(double number, TextService& text) const;
    std::string withText(const std::string& argument) const;

private:
    struct Conversion {
        bool isLeftAligned = false;
        bool hasPlus = false;
        bool hasBlank = false;
        bool hasZeros = false;
        std::size_t width = 0;
        std::optional<std::size_t> precision = std::nullopt;
    };
    class Parser;

    /// The argument, at least as wide as the width, in its place. The zeros go after the sign.
    std::string placed(const std::string& sign, const std::string& argument, bool hasZeros) const;

    std::string _before;
    std::string _after;
    Conversion _conversion;
};

} // namespace quarner
