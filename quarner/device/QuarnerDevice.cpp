// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/device/QuarnerDevice.h"

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"

namespace quarner {

std::vector<std::string> QuarnerDevice::devices() {
    std::vector<std::string> names;
    for (const auto& drive : currentPlatform()->recording->devices())
        names.push_back(drive->displayName());
    return names;
}

QuarnerDevice::QuarnerDevice(const std::string& deviceName) {
    const auto recording = currentPlatform()->recording;
    _center = recording->currentRunLoopCenter();
    for (const auto& drive : recording->devices())
        if (drive->displayName() == deviceName)
            bind(drive);
    observeAllDrives();
}

QuarnerDevice::QuarnerDevice(const std::shared_ptr<DRDevice>& drive)
    : _center(currentPlatform()->recording->currentRunLoopCenter()) {
    if (drive)
        bind(drive);
    observeAllDrives();
}

void QuarnerDevice::bind(const std::shared_ptr<DRDevice>& drive) {
    _device = drive;
    observe(DRDeviceStatusChangedNotification, drive.get(), &QuarnerDevice::deviceStatusDidChanged);
}

void QuarnerDevice::observeAllDrives() {
    observe(DRDeviceDisappearedNotification, nullptr, &QuarnerDevice::deviceDidDisappeared);
    observe(DRDeviceAppearedNotification, nullptr, &QuarnerDevice::deviceDidAppeared);
}

QuarnerDevice::~QuarnerDevice() {
    _center->removeObserver(this, DRDeviceStatusChangedNotification, nullptr);
    _center->removeObserver(this, DRDeviceDisappearedNotification, nullptr);
    _center->removeObserver(this, DRDeviceAppearedNotification, nullptr);
}

void QuarnerDevice::observe(const char* name, const DRObject* sender,
                            void (QuarnerDevice::*handler)(const DRNotification&)) {
    _center->addObserver(
        this,
        [this, handler](const DRNotification& notification) { (this->*handler)(notification); },
        name, sender);
}

std::optional<std::string> QuarnerDevice::deviceName() const {
    return _device ? std::optional(_device->displayName()) : std::nullopt;
}

std::optional<Dictionary> QuarnerDevice::info() const {
    return _device ? std::optional(_device->info()) : std::nullopt;
}

std::optional<Dictionary> QuarnerDevice::status() const {
    return _device ? std::optional(_device->status()) : std::nullopt;
}

bool QuarnerDevice::cdBurnEnabled() const {
    return _device && valueFor(_device->info(), DRDeviceCanWriteCDKey).asBool();
}

bool QuarnerDevice::isDiscInDevice() const { return _device && _device->mediaIsPresent(); }

bool QuarnerDevice::isCheckingDisc() const { return _device && _device->mediaIsTransitioning(); }

float QuarnerDevice::currentBurnSpeed() const {
    return _device ? valueFor(_device->status(), DRStatusCurrentSpeedKey).asFloat() : 0.0F;
}

void QuarnerDevice::eject() {
    if (_device)
        _device->ejectMedia();
}

void QuarnerDevice::deviceStatusDidChanged(const DRNotification& notification) {
    if (_device && notification.object == _device && _delegate != nullptr)
        _delegate->deviceStatusDidChanged();
}

void QuarnerDevice::deviceDidAppeared(const DRNotification& notification) {
    const auto drive = std::dynamic_pointer_cast<DRDevice>(notification.object);
    if (_delegate != nullptr && drive)
        _delegate->deviceDidAppeared(drive->displayName());
}

void QuarnerDevice::deviceDidDisappeared(const DRNotification& notification) {
    const auto drive = std::dynamic_pointer_cast<DRDevice>(notification.object);
    if (_delegate != nullptr && drive)
        _delegate->deviceDidDisappeared(drive->displayName());
}

} // namespace quarner
