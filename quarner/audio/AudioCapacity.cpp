// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/audio/AudioCDBurner.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {

std::uint64_t AudioCDBurner::usedCapacity() const {
    DRMSF total = DRMSF::msf();
    const ContentList::Snapshot items = _content.snapshot();
    for (const BurnItemRef& item : items)
        if (const auto track = std::dynamic_pointer_cast<const DRTrack>(item))
            total = total.msfByAdding(track->length()).msfByAdding(track->preGap());
    return total.wholeSeconds();
}

bool AudioCDBurner::isContentOverflowForDevice(const QuarnerDevice& device) const {
    return device.isDiscInDevice() && device.freeTimeOfDisc() < usedCapacity();
}

bool AudioCDBurner::isContentBlank() const { return _content.snapshot().empty(); }

} // namespace quarner
