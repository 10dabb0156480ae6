// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/DataCDBurner.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/Platform.h"

namespace quarner {

void DataCDBurner::burnWithDevice(const QuarnerDevice& device,
                                  const std::optional<std::string>& discNamed) {
    if (!device.device())
        return;
    tell(&QuarnDelegate::burnProgressDidStarted);
    const auto recording = currentPlatform()->recording;
    _burner = recording->burnForDevice(device.device());
    // Asked whether it knows its speeds, and asked again for them: the second answer counts.
    const bool knowsSpeeds = device.availableBurnSpeeds().has_value();
    _burner->setProperties(burnSettings(knowsSpeeds ? device.availableBurnSpeeds() : std::nullopt));
    const std::shared_ptr<const DRTrack> track =
        recording->trackForRootFolder(rootFolder(discNamed.value_or("")));
    DRLayout layout;
    if (track)
        layout.push_back(track);
    writeOrRefuse(std::move(layout), track ? track->estimateLength() : 0, device);
}

std::shared_ptr<const DRFolder> DataCDBurner::rootFolder(const std::string& name) const {
    const auto folder = std::make_shared<DRFolder>(name);
    const ContentList::Snapshot items = _content.snapshot();
    for (const BurnItemRef& item : items)
        if (auto node = std::dynamic_pointer_cast<const DRFile>(item))
            folder->addChild(std::move(node));
    folder->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
    return folder;
}

} // namespace quarner
