// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "adapters/optical/DriveRecord.h"

namespace quarner {

/// What a `DriveMonitor` tells, on its thread and one call at a time. A drive may be told of that
/// is known already, or removed that never was: udev repeats itself at its user's request.
class DriveListener {
public:
    virtual ~DriveListener();

    virtual void driveIsThere(const DriveRecord& record) = 0;
    virtual void driveIsGone(const std::string& sysPath) = 0;
    /// A disc was put in or out.
    virtual void mediaChanged(const std::string& sysPath) = 0;
    /// Some events were lost: list the drives afresh.
    virtual void eventsWereLost() = 0;
};

/// Listens to udev for optical drives that come and go and discs that change, on a thread of its
/// own.
class DriveMonitor {
public:
    /// From now on nothing is missed; `start` begins to tell of it.
    DriveMonitor();
    /// Ends the telling: when it returns, the listener is not called any more. Not on the
    /// monitor's thread.
    ~DriveMonitor();
    DriveMonitor(const DriveMonitor&) = delete;
    DriveMonitor& operator=(const DriveMonitor&) = delete;

    /// Tells a listener, which must outlive this object, of all that has happened since the
    /// monitor was made, and goes on. Once only. Answers false when there is no way to listen.
    bool start(DriveListener& listener);

private:
    struct Socket;

    void listen(DriveListener& listener) const;
    /// Answers false when the system says that events were lost.
    bool tellNext(DriveListener& listener) const;

    const std::unique_ptr<Socket> _socket;
    std::thread _thread;
};

} // namespace quarner
