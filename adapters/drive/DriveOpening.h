// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <string>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// Opens the node of a drive as libburn does, but reports errors. While another program has it
/// open, retries until the timeout or until the burn is stopped: then throws `BurnFailure` (`stop`
/// may be null). Returns the descriptor, or a negated errno.
int openDrive(const std::string& path, std::chrono::milliseconds timeout, const StopSignal* stop);

/// Waits between two attempts to open a drive. Throws `BurnFailure` if the burn is stopped. `stop`
/// may be null.
void waitForDrive(const StopSignal* stop);

} // namespace quarner
