// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <array>
#include <string_view>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {
namespace {

std::uint64_t wholeSeconds(std::optional<DRMSF> time) { return time ? time->wholeSeconds() : 0; }

} // namespace

bool QuarnerDevice::isDiscBlank() const { return _device && _device->mediaIsBlank(); }

bool QuarnerDevice::isDiscAppendable() const { return _device && _device->mediaIsAppendable(); }

bool QuarnerDevice::isDiscErasable() const { return _device && _device->mediaIsErasable(); }

bool QuarnerDevice::isDiscOverwritable() const { return _device && _device->mediaIsOverwritable(); }

std::optional<Dictionary> QuarnerDevice::mediaInfo() const {
    if (!_device)
        return std::nullopt;
    const Dictionary status = _device->status();
    const Dictionary* media = valueFor(status, DRDeviceMediaInfoKey).asDictionary();
    return media == nullptr ? std::nullopt : std::optional(*media);
}

bool QuarnerDevice::isCDDisc() const {
    static constexpr std::array<std::string_view, 3> compactDiscs = {
        DRDeviceMediaTypeCDROM, DRDeviceMediaTypeCDR, DRDeviceMediaTypeCDRW};
    const std::optional<Dictionary> media = mediaInfo();
    const std::string* type = media ? valueFor(*media, DRDeviceMediaTypeKey).asString() : nullptr;
    return type != nullptr &&
           std::find(compactDiscs.begin(), compactDiscs.end(), *type) != compactDiscs.end();
}

std::uint64_t QuarnerDevice::usedTimeOfDisc() const {
    return _device ? wholeSeconds(_device->mediaSpaceUsed()) : 0;
}

std::uint64_t QuarnerDevice::freeTimeOfDisc() const {
    return _device ? wholeSeconds(_device->mediaSpaceFree()) : 0;
}

std::string QuarnerDevice::stringForUsedTimeOfDisc() const {
    return MultiMedia::stringWithDuration(static_cast<std::int64_t>(usedTimeOfDisc()), false);
}

std::string QuarnerDevice::stringForFreeTimeOfDisc() const {
    return MultiMedia::stringWithDuration(static_cast<std::int64_t>(freeTimeOfDisc()), false);
}

std::uint64_t QuarnerDevice::bytesUnder(const char* blocksKey) const {
    const std::optional<Dictionary> media = mediaInfo();
    return media ? valueFor(*media, blocksKey).asUInt64() * dataBlockSize : 0;
}

std::uint64_t QuarnerDevice::usedSizeOfDisc() const {
    return bytesUnder(DRDeviceMediaBlocksUsedKey);
}

std::uint64_t QuarnerDevice::freeSizeOfDisc() const {
    return bytesUnder(DRDeviceMediaBlocksFreeKey);
}

std::string QuarnerDevice::stringForUsedSizeOfDisc() const {
    return MultiMedia::stringWithFilesize(static_cast<std::int64_t>(usedSizeOfDisc()));
}

std::string QuarnerDevice::stringForFreeSizeOfDisc() const {
    return MultiMedia::stringWithFilesize(static_cast<std::int64_t>(freeSizeOfDisc()));
}

std::optional<Array> QuarnerDevice::availableBurnSpeeds() const {
    const std::optional<Dictionary> media = mediaInfo();
    const Array* speeds = media ? valueFor(*media, DRDeviceBurnSpeedsKey).asArray() : nullptr;
    return speeds == nullptr ? std::nullopt : std::optional(*speeds);
}

} // namespace quarner
