// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/options/NearestName.h"

#include <algorithm>
#include <cctype>

namespace quarner::cli {
namespace {

bool isSameLetter(char a, char b) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(a) == lower(b);
}

using Row = std::vector<std::size_t>;

bool isSwapped(std::string_view a, std::string_view b, std::size_t i, std::size_t j) {
    return i > 1 && j > 1 && isSameLetter(a[i - 1], b[j - 2]) && isSameLetter(a[i - 2], b[j - 1]);
}

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<Row> cost(a.size() + 1, Row(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t change = isSameLetter(a[i - 1], b[j - 1]) ? 0 : 1;
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + change});
            if (isSwapped(a, b, i, j))
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

std::string nearestName(std::string_view word, const std::vector<std::string>& names) {
    const auto nearest =
        std::min_element(names.begin(), names.end(), [&](const auto& a, const auto& b) {
            return editDistance(word, a) < editDistance(word, b);
        });
    return nearest == names.end() ? std::string() : *nearest;
}

} // namespace quarner::cli
