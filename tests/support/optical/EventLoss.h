// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner {

/// Drops the next udev event that this process receives, and makes the receive fail with ENOBUFS,
/// as the kernel does if the socket's buffer is full. Any thread.
void loseNextEvent();

/// Returns the receive buffer size in bytes that this process last requested for a socket; 0 if
/// none.
int wantedReceiveRoom();

} // namespace quarner
