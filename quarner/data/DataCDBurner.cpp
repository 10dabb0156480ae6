// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/DataCDBurner.h"

#include "quarner/audio/SupportedAudioTypes.h"
#include "quarner/front/BurnerRegistry.h"

namespace quarner {

std::shared_ptr<Quarner> makeDataCDBurner() { return std::make_shared<DataCDBurner>(); }

std::vector<std::string> DataCDBurner::supportedFileTypes() { return supportedAudioTypes(); }

void DataCDBurner::removeItem(const BurnItemRef& item) {
    removeItemOfClass(item, DRFile::drClassName);
}

std::shared_ptr<const Dictionary> DataCDBurner::propertyOfBurnItem(const BurnItemRef& item) const {
    return item && item->className() == DRFile::drClassName ? item->properties() : nullptr;
}

} // namespace quarner
