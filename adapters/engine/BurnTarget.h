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

/// The drive of a burn as the engine sees it. Called on the burn thread.
class BurnTarget {
public:
    BurnTarget() = default;
    virtual ~BurnTarget();
    BurnTarget(const BurnTarget&) = delete;
    BurnTarget& operator=(const BurnTarget&) = delete;

    /// Claims the drive for one burn and writes nothing. Throws `BurnFailure` if the drive is gone
    /// or busy, or if its disc cannot take this plan with these settings. A caller that got a
    /// writer must call `release` once, after destroying the writer. If the drive is unplugged, it
    /// requests the stop of the burn through `stop`.
    virtual std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                                const std::shared_ptr<StopSignal>& stop) = 0;

    /// Reports the current speed of writing or reading back in blocks per second.
    virtual void speedChanged(double speed) = 0;

    /// Ends the claim. `writtenSectors` is the length of the disc if the burn has succeeded.
    virtual void release(std::optional<std::uint64_t> writtenSectors) = 0;
};

} // namespace quarner
