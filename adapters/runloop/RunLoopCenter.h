// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "quarner/platform/DRNotificationCenter.h"

namespace quarner {

/// The notification centre of one run loop, without the loop: notifications are posted on any
/// thread and wait here, in order, until the loop's thread delivers them. Who receives a
/// notification is decided when it is delivered, so an observer that registers between the posting
/// and the next turn of the loop misses nothing.
class RunLoopCenter : public DRNotificationCenter {
public:
    /// `wake` is called, on the posting thread and without a lock held, after each notification
    /// is queued: it makes the loop call `deliverOne` soon.
    explicit RunLoopCenter(std::function<void()> wake);
    ~RunLoopCenter() override;

    void addObserver(const void* observer, Handler handler, std::string_view name,
                     const DRObject* object) override;
    void removeObserver(const void* observer, std::string_view name,
                        const DRObject* object) override;

    /// Queues a notification. Any thread.
    void post(DRNotification notification);

    /// Delivers the oldest queued notification to its observers, in the order of their
    /// registration. Answers false when there is none, or when called from within a delivery:
    /// delivery is never re-entrant. Only on the loop's thread.
    bool deliverOne();

    bool hasPending() const; ///< Any thread.

private:
    struct Registration {
        const void* observer;
        std::string name;
        const DRObject* object;
        Handler handler;
    };
    using RegistrationRef = std::shared_ptr<const Registration>;

    std::vector<RegistrationRef> receiversOf(const DRNotification& notification) const;
    bool isRegistered(const RegistrationRef& registration) const;

    const std::function<void()> _wake;
    mutable std::mutex _mutex;
    std::vector<RegistrationRef> _registrations;
    std::deque<DRNotification> _pending;
    bool _isDelivering = false; // of the loop's thread alone
};

/// The run loops of a process.
class RunLoops {
public:
    RunLoops() = default;
    virtual ~RunLoops() = default;
    RunLoops(const RunLoops&) = delete;
    RunLoops& operator=(const RunLoops&) = delete;

    /// The centre of the run loop that is the calling thread's at this moment: one object for each
    /// run loop, made at the first call and kept alive until the loop comes to its end.
    virtual std::shared_ptr<RunLoopCenter> currentCenter() = 0;

    /// Posts a notification to every centre there is. Any thread.
    virtual void postToAll(const DRNotification& notification) = 0;
};

} // namespace quarner
