// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <utility>

#include "adapters/optical/OpticalDrive.h"
#include "quarner/platform/DRKeys.h"
#include "tests/support/MediaOf.h"

namespace quarner {

inline std::string typeOf(const OpticalDrive& drive) {
    const Dictionary media = mediaOf(drive);
    const std::string* type = valueFor(media, DRDeviceMediaTypeKey).asString();
    return type ? *type : std::string();
}
inline std::uint64_t blocksOf(const OpticalDrive& drive, const char* key) {
    return valueFor(mediaOf(drive), key).asUInt64();
}

/// Returns the properties of a disc on one line.
inline std::string factsOf(const OpticalDrive& drive) {
    std::string facts = typeOf(drive).substr(std::string("DRDeviceMediaType").size());
    for (const auto& [isSo, name] : {std::pair(drive.mediaIsBlank(), " blank"),
                                     std::pair(drive.mediaIsAppendable(), " appendable"),
                                     std::pair(drive.mediaIsErasable(), " erasable"),
                                     std::pair(drive.mediaIsOverwritable(), " overwritable")})
        facts += isSo ? name : "";
    return facts + ' ' + std::to_string(blocksOf(drive, DRDeviceMediaBlocksUsedKey)) + '/' +
           std::to_string(blocksOf(drive, DRDeviceMediaBlocksFreeKey));
}

} // namespace quarner
