// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "adapters/worker/DriveRecord.h"

namespace quarner {

/// The reports of a `DriveMonitor`, on its thread and one call at a time. A known drive may be
/// reported again, and an unknown one may be reported as removed: udev repeats events on request.
class DriveListener {
public:
    virtual ~DriveListener();

    virtual void driveIsThere(const DriveRecord& record) = 0;
    virtual void driveIsGone(const std::string& sysPath) = 0;
    /// A disc was inserted or removed.
    virtual void mediaChanged(const std::string& sysPath) = 0;
    /// Events were lost: rescan the drives.
    virtual void eventsWereLost() = 0;
};

/// Watches udev on its own thread for optical drives that come and go and discs that change.
class DriveMonitor {
public:
    /// Begins to queue events, so that none is missed. `start` begins to report them.
    DriveMonitor();
    /// Stops delivery. The listener is not called after this returns. Not on the monitor's thread.
    ~DriveMonitor();
    DriveMonitor(const DriveMonitor&) = delete;
    DriveMonitor& operator=(const DriveMonitor&) = delete;

    /// Reports all events since the monitor was made, and all later ones, to `listener`, which must
    /// outlive this object. Call it once. Returns false if events cannot be received.
    bool start(DriveListener& listener);

private:
    struct Socket;

    void listen(DriveListener& listener) const;
    /// Returns false if the system reports that events were lost.
    bool tellNext(DriveListener& listener) const;

    const std::unique_ptr<Socket> _socket;
    std::thread _thread;
};

} // namespace quarner
