// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The process that has a drive open for the library. Not to be started by hand.
#include <sys/resource.h>
#include <unistd.h>

#include <iostream>

#include "adapters/drive/DriveServer.h"
#include "adapters/worker/WorkerProgram.h"

namespace {

/// A busy machine must not let the drive wait for data. What the system does not permit is left.
void raisePriority() {
    constexpr int niceness = -10;
    setpriority(PRIO_PROCESS, 0, niceness);
}

/// Unless the drive lets go before.
void endSoon() {
    constexpr unsigned seconds = 10;
    alarm(seconds);
}

} // namespace

int main() {
    std::optional<quarner::Channel> channel = quarner::channelOfWorker();
    if (!channel) {
        std::cerr << "quarner-drive: this program is started by libquarner-desktop\n";
        return 2;
    }
    raisePriority();
    return quarner::DriveServer(std::move(*channel), endSoon).run();
}
