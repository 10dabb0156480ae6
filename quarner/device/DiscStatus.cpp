// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/device/DiscQueries.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {

bool QuarnerDevice::isDiscBlank() const { return _device && _device->mediaIsBlank(); }

bool QuarnerDevice::isDiscAppendable() const { return _device && _device->mediaIsAppendable(); }

bool QuarnerDevice::isDiscErasable() const { return _device && _device->mediaIsErasable(); }

bool QuarnerDevice::isDiscOverwritable() const { return _device && _device->mediaIsOverwritable(); }

bool QuarnerDevice::isCDDisc() const { return _device && disc::isCompactDisc(*_device); }

std::uint64_t QuarnerDevice::usedTimeOfDisc() const {
    return _device ? disc::usedSeconds(*_device) : 0;
}

std::uint64_t QuarnerDevice::freeTimeOfDisc() const {
    return _device ? disc::freeSeconds(*_device) : 0;
}

std::string QuarnerDevice::stringForUsedTimeOfDisc() const {
    return MultiMedia::stringWithDuration(static_cast<std::int64_t>(usedTimeOfDisc()), false);
}

std::string QuarnerDevice::stringForFreeTimeOfDisc() const {
    return MultiMedia::stringWithDuration(static_cast<std::int64_t>(freeTimeOfDisc()), false);
}

std::uint64_t QuarnerDevice::usedSizeOfDisc() const {
    return _device ? disc::usedBytes(*_device) : 0;
}

std::uint64_t QuarnerDevice::freeSizeOfDisc() const {
    return _device ? disc::freeBytes(*_device) : 0;
}

std::string QuarnerDevice::stringForUsedSizeOfDisc() const {
    return MultiMedia::stringWithFilesize(static_cast<std::int64_t>(usedSizeOfDisc()));
}

std::string QuarnerDevice::stringForFreeSizeOfDisc() const {
    return MultiMedia::stringWithFilesize(static_cast<std::int64_t>(freeSizeOfDisc()));
}

std::optional<Array> QuarnerDevice::availableBurnSpeeds() const {
    const auto media = _device ? disc::mediaInfo(*_device) : std::nullopt;
    const Array* speeds = media ? valueFor(*media, DRDeviceBurnSpeedsKey).asArray() : nullptr;
    return speeds == nullptr ? std::nullopt : std::optional(*speeds);
}

} // namespace quarner
