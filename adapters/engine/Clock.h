// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <functional>

namespace quarner {

/// The engine's clock: a steady clock, or a test's own. Called on any thread.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

} // namespace quarner
