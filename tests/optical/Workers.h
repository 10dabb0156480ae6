// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner {

/// Returns the processes of drives that this process has started and that have not ended.
std::vector<int> workers();
/// Sends a signal to all of them.
void signalWorkers(int signal);
/// Waits until there are none. Returns whether that was within some seconds.
bool waitForNoWorkers();

} // namespace quarner
