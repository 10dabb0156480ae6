// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/ReadableName.h"

#include <cstddef>
#include <string_view>

namespace quarner {
namespace {

unsigned byteAt(std::string_view text, std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
}

bool isContinuation(unsigned byte) { return (byte & 0xC0U) == 0x80U; }

/// The length of the well-formed sequence at the start of a text (Unicode, table 3-7), or 0.
std::size_t sequenceLength(std::string_view text) {
    const unsigned first = byteAt(text, 0);
    const unsigned second = byteAt(text, 1);
    if (first < 0x80U)
        return first >= 0x20U && first != 0x7FU ? 1 : 0;
    if (!isContinuation(second))
        return 0;
    if (first >= 0xC2U && first <= 0xDFU)
        return 2;
    const bool isThird = isContinuation(byteAt(text, 2));
    if (first >= 0xE0U && first <= 0xEFU) {
        const bool isOverlong = first == 0xE0U && second < 0xA0U;
        const bool isSurrogate = first == 0xEDU && second > 0x9FU;
        return isThird && !isOverlong && !isSurrogate ? 3 : 0;
    }
    const bool isFourth = isThird && isContinuation(byteAt(text, 3));
    const bool isInRange = (first == 0xF0U && second >= 0x90U) ||
                           (first >= 0xF1U && first <= 0xF3U) ||
                           (first == 0xF4U && second <= 0x8FU);
    return isFourth && isInRange ? 4 : 0;
}

} // namespace

std::string readableName(const std::string& name) {
    constexpr char replacement[] = "\xEF\xBF\xBD";
    std::string readable;
    std::string_view rest = name;
    while (!rest.empty()) {
        const std::size_t length = sequenceLength(rest);
        readable += length > 0 ? std::string(rest.substr(0, length)) : replacement;
        rest.remove_prefix(length > 0 ? length : 1);
    }
    return readable;
}

} // namespace quarner
