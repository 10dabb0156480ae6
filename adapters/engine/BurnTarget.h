// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/engine/SectorWriter.h"
#include "adapters/engine/StopSignal.h"

namespace quarner {

/// The drive of a burn, as the engine sees it. Called on the burn's thread.
class BurnTarget {
public:
    BurnTarget() = default;
    virtual ~BurnTarget();
    BurnTarget(const BurnTarget&) = delete;
    BurnTarget& operator=(const BurnTarget&) = delete;

    /// Takes the drive for one burn: throws `BurnFailure` when the drive is gone or busy or its
    /// disc cannot take this plan with these settings. Nothing is written yet. Whoever got a writer
    /// calls `release` once, after destroying it. The drive stops the burn through `stop` when it
    /// is unplugged.
    virtual std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                                const std::shared_ptr<StopSignal>& stop) = 0;

    /// The speed of writing or reading back has changed: blocks per second.
    virtual void speedChanged(double speed) = 0;

    /// The burn is over. `writtenSectors`: the length of the disc, when it was written whole.
    virtual void release(std::optional<std::uint64_t> writtenSectors) = 0;
};

} // namespace quarner
