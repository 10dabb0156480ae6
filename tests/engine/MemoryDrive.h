// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <utility>

#include "adapters/engine/EngineDrive.h"
#include "quarner/platform/DRKeys.h"
#include "tests/engine/MemoryDisc.h"

namespace quarner {

/// A drive on the engine that burns to a `MemoryDisc`.
class MemoryDrive : public EngineDrive {
public:
    explicit MemoryDrive(std::weak_ptr<RunLoops> runLoops, std::string name = "Memory")
        : EngineDrive(std::move(name), std::move(runLoops)) {}

    MemoryDisc disc;

    std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                        const std::shared_ptr<StopSignal>& stop) override {
        const std::lock_guard lock(mutex());
        refuseUnlessFree();
        startBurn(stop);
        return disc.claim(plan, settings, stop);
    }
    void speedChanged(double speed) override {
        EngineDrive::speedChanged(speed);
        disc.speedChanged(speed);
    }
    void release(std::optional<std::uint64_t> sectors) override {
        disc.release(sectors);
        {
            const std::lock_guard lock(mutex());
            endBurn();
        }
        reportChange();
    }

    Dictionary info() const override { return {}; }
    Dictionary status() const override {
        const std::lock_guard lock(mutex());
        return {{DRStatusCurrentSpeedKey, speed()}};
    }
    bool mediaIsPresent() const override {
        const std::lock_guard lock(mutex());
        return isAttached();
    }
    bool mediaIsTransitioning() const override { return false; }
    bool mediaIsBlank() const override { return mediaIsPresent(); }
    bool mediaIsAppendable() const override { return false; }
    bool mediaIsErasable() const override { return false; }
    bool mediaIsOverwritable() const override { return false; }
    std::optional<DRMSF> mediaSpaceUsed() const override { return std::nullopt; }
    std::optional<DRMSF> mediaSpaceFree() const override { return std::nullopt; }
    bool ejectMedia() override { return false; }
};

} // namespace quarner
