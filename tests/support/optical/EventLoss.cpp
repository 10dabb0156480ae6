// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The functions below are interposed before the test bed's, which are interposed before libc's.
#include "tests/support/optical/EventLoss.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>

namespace quarner {
namespace {

std::atomic<bool> isNextLost = false;
std::atomic<int> wantedRoom = 0;

template <class Function>
Function following(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

using Receive = ssize_t (*)(int, void*, size_t, int);
using SetOption = int (*)(int, int, int, const void*, socklen_t);

} // namespace

void loseNextEvent() { isNextLost = true; }

int wantedReceiveRoom() { return wantedRoom; }

} // namespace quarner

#define QUARNER_EXPORT [[gnu::visibility("default")]]

extern "C" {

/// A reader of events asks for the next event's length first.
QUARNER_EXPORT ssize_t recv(int socket, void* buffer, size_t size, int flags) {
    const auto receive = quarner::following<quarner::Receive>("recv");
    if ((flags & MSG_PEEK) == 0 || !quarner::isNextLost.exchange(false))
        return receive(socket, buffer, size, flags);
    char byte = 0;
    receive(socket, &byte, sizeof byte, MSG_DONTWAIT);
    errno = ENOBUFS;
    return -1;
}

QUARNER_EXPORT int setsockopt(int socket, int level, int name, const void* value,
                              socklen_t size) noexcept {
    if (level == SOL_SOCKET && (name == SO_RCVBUF || name == SO_RCVBUFFORCE))
        quarner::wantedRoom = *static_cast<const int*>(value);
    return quarner::following<quarner::SetOption>("setsockopt")(socket, level, name, value, size);
}
}
