// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner {

/// Takes the next event of udev that this process reads away from it, and lets the reading fail
/// with ENOBUFS: as the kernel does it when the socket has no room for an event. Any thread.
void loseNextEvent();

/// The room in bytes that this process last asked for on a socket that receives; 0 so far.
int wantedReceiveRoom();

} // namespace quarner
