// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "quarner/platform/DRObject.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// What a notification centre delivers. `object` is the sender: a DRDevice or a DRBurn.
struct DRNotification {
    std::string name;
    std::shared_ptr<DRObject> object;
    Dictionary userInfo;
};

/// The notification centre of one thread's run loop
/// (`RecordingService::currentRunLoopCenter`). Handlers registered with it are called by that
/// run loop, one at a time, in the order in which the service sent the notifications, and never
/// from within another call into the service.
class QUARNER_EXPORT DRNotificationCenter {
public:
    using Handler = std::function<void(const DRNotification&)>;

    DRNotificationCenter() = default;
    virtual ~DRNotificationCenter();
    DRNotificationCenter(const DRNotificationCenter&) = delete;
    DRNotificationCenter& operator=(const DRNotificationCenter&) = delete;

    /// `addObserver:selector:name:object:`: calls the handler for every notification of a name
    /// from one sender, or from any when `object` is null. `observer` identifies the
    /// registration for its removal and is never looked at. The same observer may register
    /// several times and is then called as often. The centre does not keep the sender alive.
    virtual void addObserver(const void* observer, Handler handler, std::string_view name,
                             const DRObject* object) = 0;

    /// `removeObserver:name:object:`: drops the registrations of an observer for a name and a
    /// sender; a null `object` drops those for the name whatever their sender. When this returns
    /// on the run loop's own thread, the handlers are not called again, not even for
    /// notifications that were already sent; on another thread a call may still be under way.
    virtual void removeObserver(const void* observer, std::string_view name,
                                const DRObject* object) = 0;
};

} // namespace quarner
