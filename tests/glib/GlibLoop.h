// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <chrono>
#include <functional>

namespace quarner {

/// Runs a context's loop until a condition is true. Returns false after ten seconds.
inline bool runLoopUntil(const std::function<bool()>& condition, GMainContext* context = nullptr) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        if (!g_main_context_iteration(context, FALSE))
            g_usleep(200);
    }
    return true;
}

/// Turns a context's loop while it has work to do at once.
inline int runPendingTurns(GMainContext* context = nullptr) {
    int turns = 0;
    while (g_main_context_iteration(context, FALSE))
        ++turns;
    return turns;
}

} // namespace quarner
