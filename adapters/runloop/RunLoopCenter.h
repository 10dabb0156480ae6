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

/// The notification centre of one run loop, without the loop itself. Notifications are posted on
/// any thread and queued in order until the loop's thread delivers them. The receivers are chosen
/// at delivery, so an observer that registers between the posting and the next turn of the loop
/// misses nothing.
class RunLoopCenter : public DRNotificationCenter {
public:
    /// `wake` is called on the posting thread, without a lock held, after each notification is
    /// queued. It must make the loop call `deliverOne` soon.
    explicit RunLoopCenter(std::function<void()> wake);
    ~RunLoopCenter() override;

    void addObserver(const void* observer, Handler handler, std::string_view name,
                     const DRObject* object) override;
    void removeObserver(const void* observer, std::string_view name,
                        const DRObject* object) override;

    /// Queues a notification. Any thread.
    void post(DRNotification notification);

    /// Delivers the oldest queued notification to its observers, in the order of their
    /// registration. Returns false if there is none, or if called during a delivery: delivery is
    /// not re-entrant. Only on the loop's thread.
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
    bool _isDelivering = false; // used by the loop's thread only
};

} // namespace quarner
