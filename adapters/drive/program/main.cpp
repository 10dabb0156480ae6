// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The process that has a drive open for the library. Not to be started by hand.
#include <sys/resource.h>

#include <chrono>
#include <iostream>

#include "adapters/drive/DriveServer.h"
#include "adapters/worker/WorkerProgram.h"

namespace {

/// A busy machine must not let the drive wait for data. As far as the system permits it.
void raisePriority() {
    constexpr int wanted = -10;
    for (int niceness = wanted; niceness < 0; ++niceness)
        if (setpriority(PRIO_PROCESS, 0, niceness) == 0)
            return;
}

} // namespace

int main() {
    std::optional<quarner::Channel> channel = quarner::channelOfWorker();
    if (!channel) {
        std::cerr << "quarner-drive: this program is started by libquarner-desktop\n";
        return 2;
    }
    raisePriority();
    return quarner::DriveServer(std::move(*channel), std::chrono::milliseconds(QUARNER_TIME_TO_END))
        .run();
}
