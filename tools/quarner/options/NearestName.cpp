// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/options/NearestName.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace quarner::cli {
namespace {

bool isSameLetter(char a, char b) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(a) == lower(b);
}

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1); // of the matrix of distances
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = isSameLetter(a[i - 1], b[j - 1]) ? 0 : 1;
            const std::size_t cost = std::min({row[j] + 1, row[j - 1] + 1, diagonal + change});
            diagonal = std::exchange(row[j], cost);
        }
    }
    return row.back();
}

std::string nearestName(std::string_view word, const std::vector<std::string>& names) {
    const auto nearest =
        std::min_element(names.begin(), names.end(), [&](const auto& a, const auto& b) {
            return editDistance(word, a) < editDistance(word, b);
        });
    return nearest == names.end() ? std::string() : *nearest;
}

} // namespace quarner::cli
