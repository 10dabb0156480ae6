// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/DataCDBurner.h"
#include "quarner/device/QuarnerDevice.h"

namespace quarner {

std::uint64_t DataCDBurner::usedCapacity() const {
    std::uint64_t bytes = 0;
    const ContentList::Snapshot items = _content.snapshot();
    for (const BurnItemRef& item : items)
        if (const auto properties = propertyOfBurnItem(item))
            bytes += static_cast<std::uint64_t>(
                valueFor(*properties, kQuarnItemRealFileSizeKey).asInt64());
    return bytes;
}

bool DataCDBurner::isContentOverflowForDevice(const QuarnerDevice& device) const {
    return device.isDiscInDevice() && device.freeSizeOfDisc() < usedCapacity();
}

} // namespace quarner
