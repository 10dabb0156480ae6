// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/BurnTarget.h"
#include "adapters/runloop/RunLoops.h"
#include "quarner/platform/DRDevice.h"

namespace quarner {

/// The base of every drive that the engine burns on. It holds whether the drive is attached, which
/// burn uses it and how fast. A derived class adds the disc, and reports none unless `isAttached`.
/// Every public operation may be called on any thread. Must be owned by a shared pointer.
class EngineDrive : public DRDevice,
                    public BurnTarget,
                    public std::enable_shared_from_this<EngineDrive> {
public:
    std::string displayName() const override { return _displayName; }
    void speedChanged(double speed) override;

    /// Unplugs the drive for good: it has no disc from then on, and a running burn fails with
    /// `DRError::DeviceVanished`. Sends no notification.
    void unplug();
    /// The same, but does nothing and returns false while a burn is running.
    bool unplugUnlessBurning();

protected:
    EngineDrive(std::string displayName, std::weak_ptr<RunLoops> runLoops);

    /// Guards the drive. A derived class guards its disc with it too, so that the disc and the burn
    /// change in one step.
    std::mutex& mutex() const { return _mutex; }

    // Each of these is called with the mutex locked.
    bool isAttached() const { return _isAttached; }
    bool isBurning() const { return _burning != nullptr; }
    double speed() const { return _speed; } ///< blocks per second; 0 unless a burn is running
    /// Throws `BurnFailure` if the drive is unplugged, or if a burn is running.
    void refuseUnlessFree() const;
    /// Makes `stop` the signal of the running burn.
    void startBurn(std::shared_ptr<StopSignal> stop);
    void endBurn();

    /// Sends `DRDeviceStatusChangedNotification` to every run loop. Called without the mutex.
    void reportChange();

private:
    const std::string _displayName;
    /// Weak, because a queued notification in one of the loops owns this drive.
    const std::weak_ptr<RunLoops> _runLoops;

    mutable std::mutex _mutex;
    bool _isAttached = true;
    std::shared_ptr<StopSignal> _burning; ///< of the running burn, otherwise null
    double _speed = 0.0;
};

/// Returns the failure of a burn whose layout needs more than the `blocks` blocks of its disc.
BurnFailure discTooSmall(const DiscPlan& plan, std::uint64_t blocks);

} // namespace quarner
