// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/FittingStem.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace quarner {
namespace {

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

} // namespace

std::string numberFor(const std::string& name) {
    std::uint32_t number = 2166136261U; // FNV-1a
    for (const char c : name)
        number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "-%08x", number);
    return text.data();
}

std::size_t longestNameIn(const std::string& folder) {
    constexpr long usual = 255; // some file systems count characters, and return their most bytes
    constexpr long least = 64;
    const long most = pathconf(folder.c_str(), _PC_NAME_MAX);
    return static_cast<std::size_t>(most < 0 ? usual : std::clamp(most, least, usual));
}

std::string fittingStem(const std::string& stem, std::size_t most) {
    if (stem.size() <= most)
        return stem;
    constexpr int longestCharacter = 4;
    const std::string number = numberFor(stem);
    std::size_t end = most - number.size();
    for (int i = 1; i < longestCharacter && continuesCharacter(stem[end]); ++i)
        --end;
    return stem.substr(0, end) + number;
}

} // namespace quarner
