// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DiscRefusal.h"

#include "adapters/engine/EngineDrive.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Texts.h"

namespace quarner {

std::optional<BurnFailure> refusalOf(const DiscFacts& disc, const DiscPlan& plan,
                                     const BurnSettings& settings) {
    using State = DiscFacts::State;
    if (disc.state == State::None)
        return BurnFailure(DRError::MediaNotPresent, text("no disc"));
    if (disc.state == State::NotReady)
        return BurnFailure(DRError::MediaNotPresent, text("the disc does not get ready"));
    if (disc.type == DRDeviceMediaTypeCDROM) // many drives also report a closed CD-R as CD-ROM
        return BurnFailure(DRError::MediaNotWritable, text("the disc cannot be recorded any more"));
    if (disc.type != DRDeviceMediaTypeCDR && disc.type != DRDeviceMediaTypeCDRW)
        return BurnFailure(DRError::WrongMedia,
                           text("the disc is no CD: {kind}", {{"kind", disc.type}}));
    if (disc.state != State::Blank && !(disc.isErasable && settings.overwrite))
        return BurnFailure(DRError::MediaNotWritable, text("the disc is not blank"));
    if (plan.sectors() > disc.freeBlocks)
        return discTooSmall(plan, disc.freeBlocks);
    return std::nullopt;
}

} // namespace quarner
