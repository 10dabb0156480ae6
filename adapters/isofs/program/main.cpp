// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The process that lays out a file system for the library. Not to be started by hand.
#include <unistd.h>

#include <exception>
#include <iostream>

#include "adapters/isofs/LayoutServer.h"
#include "adapters/worker/JolietProtocol.h"
#include "adapters/worker/WorkerProgram.h"

int main() {
    std::optional<quarner::Channel> channel = quarner::channelOfWorker();
    if (!channel) {
        std::cerr << "quarner-joliet: this program is started by libquarner-desktop\n";
        return 2;
    }
    alarm(unsigned(quarner::joliet::timeout.count())); // also if nobody waits any more
    try {
        quarner::serveLayout(*channel);
    } catch (const std::exception&) {
        return 1;
    }
    return 0;
}
