// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/device/DiscQueries.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/platform/Platform.h"

namespace quarner::disc {
namespace {

std::uint64_t wholeSeconds(std::optional<DRMSF> time) { return time ? time->wholeSeconds() : 0; }

std::uint64_t bytesUnder(const DRDevice& drive, const char* blocksKey) {
    const std::optional<Dictionary> media = mediaInfo(drive);
    return media ? valueFor(*media, blocksKey).asUInt64() * dataBlockSize : 0;
}

} // namespace

bool isAttached(const std::shared_ptr<DRDevice>& drive) {
    const auto all = currentPlatform()->recording->devices();
    return std::find(all.begin(), all.end(), drive) != all.end();
}

std::optional<Dictionary> mediaInfo(const DRDevice& drive) {
    const Dictionary status = drive.status();
    const Dictionary* media = valueFor(status, DRDeviceMediaInfoKey).asDictionary();
    return media == nullptr ? std::nullopt : std::optional(*media);
}

bool isCompactDisc(const DRDevice& drive) {
    static constexpr std::array<std::string_view, 3> compactDiscs = {
        DRDeviceMediaTypeCDROM, DRDeviceMediaTypeCDR, DRDeviceMediaTypeCDRW};
    const std::optional<Dictionary> media = mediaInfo(drive);
    const std::string* type = media ? valueFor(*media, DRDeviceMediaTypeKey).asString() : nullptr;
    return type != nullptr &&
           std::find(compactDiscs.begin(), compactDiscs.end(), *type) != compactDiscs.end();
}

std::uint64_t usedSeconds(const DRDevice& drive) { return wholeSeconds(drive.mediaSpaceUsed()); }

std::uint64_t freeSeconds(const DRDevice& drive) { return wholeSeconds(drive.mediaSpaceFree()); }

std::uint64_t usedBytes(const DRDevice& drive) {
    return bytesUnder(drive, DRDeviceMediaBlocksUsedKey);
}

std::uint64_t freeBytes(const DRDevice& drive) {
    return bytesUnder(drive, DRDeviceMediaBlocksFreeKey);
}

} // namespace quarner::disc
