// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedDriveImpl.h"

#include <utility>

namespace quarner {
namespace {

template <typename Entry>
void set(Dictionary& dictionary, const char* key, const std::optional<Entry>& entry) {
    if (entry)
        dictionary[key] = *entry;
}

Dictionary mediaInfo(const DiscScript& disc) {
    Dictionary info = {{DRDeviceMediaTypeKey, disc.type}};
    set(info, DRDeviceMediaBlocksUsedKey, disc.blocksUsed);
    set(info, DRDeviceMediaBlocksFreeKey, disc.blocksFree);
    set(info, DRDeviceBurnSpeedsKey, disc.speeds);
    return info;
}

std::uint64_t blocksOf(const DRLayout& layout) {
    std::uint64_t blocks = 0;
    for (const auto& track : layout)
        blocks += track->estimateLength();
    return blocks;
}

} // namespace

ScriptedDriveImpl::ScriptedDriveImpl(std::shared_ptr<ScriptedContext> context, DriveScript script)
    : _context(std::move(context)), _script(std::move(script)) {}

void ScriptedDriveImpl::insert(DiscScript disc) {
    change([&](DriveScript& script) { script.disc = std::move(disc); });
}

void ScriptedDriveImpl::change(const std::function<void(DriveScript&)>& change) {
    {
        const std::lock_guard lock(_mutex);
        change(_script);
    }
    reportChange();
}

void ScriptedDriveImpl::reportChange() {
    _context->post({DRDeviceStatusChangedNotification, shared_from_this(), {}});
}

DriveScript ScriptedDriveImpl::script() const {
    const std::lock_guard lock(_mutex);
    DriveScript script = _script;
    if (_isDetached) { // like the other drives, it has no disc then
        script.disc.reset();
        script.isTransitioning = false;
    }
    return script;
}

std::string ScriptedDriveImpl::displayName() const { return script().name; }

Dictionary ScriptedDriveImpl::info() const {
    Dictionary info;
    if (!_context->fails(ServiceCall::DriveInfo, displayName()))
        set(info, DRDeviceCanWriteCDKey, script().canWriteCD);
    return info;
}

Dictionary ScriptedDriveImpl::status() const {
    Dictionary status;
    if (_context->fails(ServiceCall::DriveStatus, displayName()))
        return status;
    const DriveScript now = script();
    set(status, DRStatusCurrentSpeedKey, now.currentSpeed);
    if (now.disc && now.disc->hasMediaInfo)
        status[DRDeviceMediaInfoKey] = mediaInfo(*now.disc);
    return status;
}

bool ScriptedDriveImpl::mediaIsPresent() const { return script().disc.has_value(); }

bool ScriptedDriveImpl::mediaIsTransitioning() const { return script().isTransitioning; }

std::string ScriptedDriveImpl::accessProblem() const { return script().accessProblem; }

bool ScriptedDriveImpl::mediaIsBlank() const {
    const DriveScript now = script();
    return now.disc && now.disc->isBlank;
}

bool ScriptedDriveImpl::mediaIsAppendable() const {
    const DriveScript now = script();
    return now.disc && now.disc->isAppendable;
}

bool ScriptedDriveImpl::mediaIsErasable() const {
    const DriveScript now = script();
    return now.disc && now.disc->isErasable;
}

bool ScriptedDriveImpl::mediaIsOverwritable() const {
    const DriveScript now = script();
    return now.disc && now.disc->isOverwritable;
}

std::optional<DRMSF> ScriptedDriveImpl::mediaSpaceUsed() const {
    const DriveScript now = script();
    return now.disc ? now.disc->spaceUsed : std::nullopt;
}

std::optional<DRMSF> ScriptedDriveImpl::mediaSpaceFree() const {
    const DriveScript now = script();
    return now.disc ? now.disc->spaceFree : std::nullopt;
}

bool ScriptedDriveImpl::ejectMedia() {
    if (_context->fails(ServiceCall::EjectMedia, displayName()) || !mediaIsPresent() || isBurning())
        return false;
    change([](DriveScript& script) { script.disc.reset(); });
    return true;
}

bool ScriptedDriveImpl::isBurning() const {
    std::shared_ptr<const ScriptedBurn> burn;
    {
        const std::lock_guard lock(_mutex);
        burn = _burn.lock();
    }
    return burn && !burn->isOver();
}

void ScriptedDriveImpl::setDetached() {
    const std::lock_guard lock(_mutex);
    _isDetached = true;
}

std::optional<DRError> ScriptedDriveImpl::refusalOf(const DRLayout& layout) const {
    std::unique_lock lock(_mutex);
    const bool isDetached = _isDetached;
    const std::optional<DiscScript> disc = _script.disc;
    lock.unlock();
    if (isDetached)
        return DRError::DeviceVanished;
    if (isBurning())
        return DRError::DeviceBusy;
    if (layout.empty())
        return DRError::EmptyLayout;
    if (!disc)
        return DRError::MediaNotPresent;
    if (disc->blocksFree && blocksOf(layout) > *disc->blocksFree)
        return DRError::MediaTooSmall;
    return std::nullopt;
}

void ScriptedDriveImpl::setBurn(std::weak_ptr<const ScriptedBurn> burn) {
    const std::lock_guard lock(_mutex);
    _burn = std::move(burn);
}

} // namespace quarner
