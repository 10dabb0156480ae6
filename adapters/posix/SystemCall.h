// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cerrno>

namespace quarner {

/// Makes a call of the system that returns -1 and sets `errno` if it fails, and repeats it as long
/// as a signal interrupts it. Returns what the call returns. Not for `close`, which must not be
/// repeated. Any thread.
template <typename Call>
auto uninterrupted(const Call& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

} // namespace quarner
