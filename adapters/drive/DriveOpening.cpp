// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DriveOpening.h"

#include <fcntl.h>

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace quarner {

int openDrive(const std::string& path, std::chrono::milliseconds timeout, const StopSignal* stop) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (true) {
        const int descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_EXCL | O_CLOEXEC);
        if (descriptor >= 0)
            return descriptor;
        const int error = errno;
        if (error != EBUSY || std::chrono::steady_clock::now() >= end)
            return -error;
        waitForDrive(stop);
    }
}

void waitForDrive(const StopSignal* stop) {
    constexpr std::chrono::milliseconds retryInterval{100};
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, stop ? stop->token() : std::stop_token(), retryInterval,
                   [] { return false; });
    if (stop)
        stop->throwIfRequested();
}

} // namespace quarner
