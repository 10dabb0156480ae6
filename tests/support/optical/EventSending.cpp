// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Interposed before libc's function, for the test bed.
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <cerrno>
#include <numeric>
#include <span>

namespace {

ssize_t sizeOf(const msghdr& message) {
    const std::span parts(message.msg_iov, message.msg_iovlen);
    return std::accumulate(
        parts.begin(), parts.end(), ssize_t(0),
        [](ssize_t sum, const iovec& part) { return sum + ssize_t(part.iov_len); });
}

} // namespace

/// A program that listens to udev may end while an event is sent to it. The test bed would
/// end the test.
extern "C" [[gnu::visibility("default")]] ssize_t sendmsg(int socket, const msghdr* message,
                                                          int flags) {
    static const auto following =
        reinterpret_cast<ssize_t (*)(int, const msghdr*, int)>(dlsym(RTLD_NEXT, "sendmsg"));
    const ssize_t sent = following(socket, message, flags);
    return sent < 0 && errno == ECONNREFUSED ? sizeOf(*message) : sent;
}
