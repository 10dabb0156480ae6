// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/audio/AudioCDBurner.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRTrack.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

DRLayout layoutOf(const ContentList::Snapshot& items) {
    DRLayout layout;
    for (const BurnItemRef& item : items)
        if (auto track = std::dynamic_pointer_cast<const DRTrack>(item))
            layout.push_back(std::move(track));
    return layout;
}

std::uint64_t estimatedBlocks(const DRLayout& layout) {
    std::uint64_t blocks = 0;
    for (const auto& track : layout)
        blocks += track->estimateLength();
    return blocks;
}

} // namespace

void AudioCDBurner::burnWithDevice(const QuarnerDevice& device,
                                   const std::optional<std::string>& discNamed) {
    const auto self = weak_from_this().lock(); // the delegate may drop the last reference
    tell(&QuarnDelegate::burnProgressDidStarted);
    if (!self) {
        refuseBurn();
        return;
    }
    // The burn object of an earlier burn is only released: that burn continues and still reports.
    _burner = currentPlatform()->recording->burnForDevice(device.device());
    const Dictionary settings = burnSettings(device.availableBurnSpeeds());
    const ContentList::Snapshot items = _content.snapshot();
    fillTextBlock(discNamed, items);
    _burner->setProperties(settings);
    DRLayout layout = layoutOf(items);
    _estimateTotalLength = estimatedBlocks(layout);
    // Compares bytes with blocks, unconverted, so this refuses only a drive with (almost) no free
    // space.
    writeOrRefuse(std::move(layout),
                  !items.empty() && _estimateTotalLength < device.freeSizeOfDisc());
}

Dictionary AudioCDBurner::burnSettings(const std::optional<Array>& speeds) {
    Dictionary settings = {
        {DRBurnAppendableKey, false}, {DRBurnOverwriteDiscKey, true}, {DRBurnVerifyDiscKey, true}};
    if (speeds && !speeds->empty())
        settings[DRBurnRequestedSpeedKey] = speeds->back();
    return settings;
}

void AudioCDBurner::writeOrRefuse(DRLayout layout, bool isFitting) {
    if (!isFitting) {
        refuseBurn();
        return;
    }
    _burner->writeLayout(std::move(layout));
    observeBurn();
}

void AudioCDBurner::refuseBurn() {
    tell(&QuarnDelegate::burnProgressDidError, BurnError{burnErrorDomain, 0, {}});
}

void AudioCDBurner::fillTextBlock(const std::optional<std::string>& discName,
                                  const ContentList::Snapshot& items) {
    if (discName)
        _textBlock->setObject(*discName, DRCDTextTitleKey, 0);
    std::int64_t track = 0;
    for (const BurnItemRef& item : items)
        _textBlock->setObject(valueFor(*item->properties(), kQuarnItemDisplayNameKey),
                              DRCDTextTitleKey, ++track);
}

void AudioCDBurner::observeBurn() {
    // The burn may outlive its burner, which then receives no more records.
    const auto self = std::static_pointer_cast<AudioCDBurner>(shared_from_this());
    const std::weak_ptr<AudioCDBurner> weakSelf = self;
    const auto center = currentPlatform()->recording->currentRunLoopCenter();
    _burnCenters.insert(center);
    center->addObserver(
        this,
        [weakSelf](const DRNotification& notification) {
            if (const auto burner = weakSelf.lock())
                burner->burnStatusDidChange(notification);
        },
        DRBurnStatusChangedNotification, _burner.get());
}

} // namespace quarner
