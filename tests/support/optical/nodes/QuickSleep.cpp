// SPDX-License-Identifier: LGPL-2.1-or-later
//
// libburn waits half a second or more after each step before it asks whether a drive is ready. The
// emulated drives are ready at once, so these functions, interposed before libc's in every program
// that links this file, end its delays early.
#include <algorithm>
#include <chrono>
#include <thread>

namespace {
void delay(std::chrono::microseconds time) {
    constexpr std::chrono::microseconds longest(2000);
    std::this_thread::sleep_for(std::min(time, longest));
}
} // namespace

extern "C" {

[[gnu::visibility("default")]] int usleep(unsigned microseconds) {
    delay(std::chrono::microseconds(microseconds));
    return 0;
}

[[gnu::visibility("default")]] unsigned sleep(unsigned seconds) {
    delay(std::chrono::seconds(seconds));
    return 0;
}
}
