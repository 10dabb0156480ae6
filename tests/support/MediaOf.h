// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {

/// Returns the media information of a drive's status; empty if it has none.
inline Dictionary mediaOf(const DRDevice& drive) {
    const Dictionary status = drive.status();
    const Dictionary* media = valueFor(status, DRDeviceMediaInfoKey).asDictionary();
    return media == nullptr ? Dictionary() : *media;
}

} // namespace quarner
