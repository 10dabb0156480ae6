// SPDX-License-Identifier: LGPL-2.1-or-later
//
// libburn gives a drive half a second or more for each step before it asks whether it is ready.
// These drives are, so its naps end early: the functions stand before libc's in every program that
// holds them.
#include <algorithm>
#include <chrono>
#include <thread>

namespace {
void nap(std::chrono::microseconds time) {
    constexpr std::chrono::microseconds longest(2000);
    std::this_thread::sleep_for(std::min(time, longest));
}
} // namespace

extern "C" {

[[gnu::visibility("default")]] int usleep(unsigned microseconds) {
    nap(std::chrono::microseconds(microseconds));
    return 0;
}

[[gnu::visibility("default")]] unsigned sleep(unsigned seconds) {
    nap(std::chrono::seconds(seconds));
    return 0;
}
}
