// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineDrive.h"

#include <utility>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Texts.h"

namespace quarner {

EngineDrive::EngineDrive(std::string displayName, std::weak_ptr<RunLoops> runLoops)
    : _displayName(std::move(displayName)), _runLoops(std::move(runLoops)) {}

void EngineDrive::speedChanged(double speed) {
    const std::lock_guard lock(_mutex);
    _speed = speed;
}

void EngineDrive::unplug() {
    std::shared_ptr<StopSignal> burning;
    {
        const std::lock_guard lock(_mutex);
        _isAttached = false;
        burning = _burning;
    }
    if (burning)
        burning->request(DRError::DeviceVanished);
}

bool EngineDrive::unplugUnlessBurning() {
    const std::lock_guard lock(_mutex);
    if (!_burning)
        _isAttached = false;
    return !_burning;
}

void EngineDrive::refuseUnlessFree() const {
    if (!_isAttached)
        throw BurnFailure(DRError::DeviceVanished,
                          text("{drive}: unplugged", {{"drive", _displayName}}));
    if (_burning)
        throw BurnFailure(DRError::DeviceBusy,
                          text("{drive}: another burn is under way", {{"drive", _displayName}}));
}

void EngineDrive::startBurn(std::shared_ptr<StopSignal> stop) { _burning = std::move(stop); }

void EngineDrive::endBurn() {
    _burning.reset();
    _speed = 0.0;
}

void EngineDrive::reportChange() {
    if (const auto runLoops = _runLoops.lock())
        runLoops->postToAll({DRDeviceStatusChangedNotification, shared_from_this(), {}});
}

BurnFailure discTooSmall(const DiscPlan& plan, std::uint64_t blocks) {
    return {
        DRError::MediaTooSmall,
        text("the layout takes {sectors} sectors, the disc has {blocks}",
             {{"sectors", std::to_string(plan.sectors())}, {"blocks", std::to_string(blocks)}})};
}

} // namespace quarner
