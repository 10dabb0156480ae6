// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "adapters/worker/Channel.h"

namespace quarner {

/// Receives a folder, lays it out and replies, once. See JolietProtocol.h.
void serveLayout(const Channel& channel);

} // namespace quarner
