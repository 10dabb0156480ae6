// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>

#include "adapters/worker/Channel.h"

namespace quarner {

/// Returns this process's end of the connection to the library that has started it; `std::nullopt`
/// if it was started by something else. From then on the signals that end programs are ignored:
/// this one ends with the connection.
std::optional<Channel> channelOfWorker();

/// What the library sends first: the version, and what texts in the language of its user need.
Dictionary helloFields();

/// Uses the language that the library's user has, from `helloFields`, and gives the diagnostic log
/// to the library. `channel` must outlive the process's last message.
void installWorkerPlatform(const Dictionary& hello, const Channel& channel);

} // namespace quarner
