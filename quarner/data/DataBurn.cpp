// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/DataCDBurner.h"
#include "quarner/data/RootFolder.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/Platform.h"

namespace quarner {

void DataCDBurner::burnWithDevice(const QuarnerDevice& device,
                                  const std::optional<std::string>& discNamed) {
    if (!device.device())
        return;
    const auto self = weak_from_this().lock(); // the delegate may drop the last reference
    tell(&QuarnDelegate::burnProgressDidStarted);
    if (!self) {
        refuseBurn();
        return;
    }
    const auto recording = currentPlatform()->recording;
    _burner = recording->burnForDevice(device.device());
    // The drive is asked whether it knows its speeds, and then asked again for them: the second
    // result counts.
    const bool knowsSpeeds = device.availableBurnSpeeds().has_value();
    _burner->setProperties(burnSettings(knowsSpeeds ? device.availableBurnSpeeds() : std::nullopt));
    const std::shared_ptr<const DRTrack> track =
        recording->trackForRootFolder(rootFolderOf(_content.snapshot(), discNamed.value_or("")));
    const std::uint64_t freeBytes = device.freeSizeOfDisc();
    const bool isFitting = track ? track->isEstimateBelow(freeBytes) : freeBytes > 0;
    writeOrRefuse(track ? DRLayout{track} : DRLayout{}, isFitting);
}

} // namespace quarner
