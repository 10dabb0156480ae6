// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <ctime>
#include <functional>
#include <vector>

namespace quarner::testing {

/// The processor time of `work`, summed over this program's threads.
inline double secondsOf(const std::function<void()>& work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The median of several times, of more if they are short, because the machine is shared, and
/// because one of them may by luck have to wait for nothing.
inline double usualSecondsOf(const std::function<void()>& work) {
    constexpr std::size_t leastTimes = 5;
    constexpr double enough = 0.1;
    std::vector<double> times;
    for (double sum = 0; times.size() < leastTimes || sum < enough; sum += times.back())
        times.push_back(secondsOf(work));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace quarner::testing
