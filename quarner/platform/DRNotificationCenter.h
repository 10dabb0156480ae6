// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "quarner/platform/DRObject.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// One notification.
struct DRNotification {
    std::string name;                 ///< one of the DR...Notification of DRKeys.h
    std::shared_ptr<DRObject> object; ///< its sender: a DRDevice or a DRBurn; never null
    Dictionary userInfo;              ///< a burn's status record; empty for a drive
};

/// The notification centre of one run loop (`RecordingService::currentRunLoopCenter`). That run
/// loop calls the registered handlers: one at a time, in the order in which the service sent the
/// notifications, and never from within another call into the service.
class QUARNER_EXPORT DRNotificationCenter {
public:
    /// Receives a notification. It must not throw.
    using Handler = std::function<void(const DRNotification&)>;

    DRNotificationCenter() = default;
    virtual ~DRNotificationCenter();
    DRNotificationCenter(const DRNotificationCenter&) = delete;
    DRNotificationCenter& operator=(const DRNotificationCenter&) = delete;

    /// `addObserver:selector:name:object:`: calls `handler` for every notification called `name`
    /// that `object` sends, or that any sender sends if `object` is null. `observer` identifies the
    /// registration for its removal and is never dereferenced. An observer that registers several
    /// times is called several times. The centre does not keep the sender alive.
    virtual void addObserver(const void* observer, Handler handler, std::string_view name,
                             const DRObject* object) = 0;

    /// `removeObserver:name:object:`: removes the registrations of `observer` for `name` and
    /// `object`; if `object` is null, those for `name` and any sender. After a call on the run
    /// loop's own thread, the handlers are not called again, not even for notifications that were
    /// already sent. After a call on another thread, a handler may still be running.
    virtual void removeObserver(const void* observer, std::string_view name,
                                const DRObject* object) = 0;
};

} // namespace quarner
