// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/audio/AudioCDBurner.h"

#include "quarner/front/BurnerRegistry.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {

std::shared_ptr<Quarner> makeAudioCDBurner() { return std::make_shared<AudioCDBurner>(); }

AudioCDBurner::AudioCDBurner()
    : _textBlock(std::make_unique<DRCDTextBlock>("", isoLatin1StringEncoding)) {}

AudioCDBurner::~AudioCDBurner() {
    for (const auto& weakCenter : _burnCenters)
        if (const auto center = weakCenter.lock())
            center->removeObserver(this, DRBurnStatusChangedNotification, nullptr);
    _textBlock.reset();
    _supportedFiles.reset();
}

} // namespace quarner
