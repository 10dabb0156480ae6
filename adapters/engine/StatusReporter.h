// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "adapters/engine/BurnFailure.h"
#include "adapters/runloop/RunLoopCenter.h"
#include "quarner/platform/DRObject.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// The progress in a status record: the fraction of the phase, and blocks per second.
struct BurnProgress {
    double fraction;
    double speed;
};

/// Makes the status records of one burn (see DRKeys.h) and posts them to the run loop that started
/// it. Keeps the burn alive. A record has a fraction only if `progress` is given.
class StatusReporter {
public:
    StatusReporter(std::shared_ptr<RunLoopCenter> center, std::shared_ptr<DRObject> burn);

    void state(const char* state, std::optional<BurnProgress> progress = std::nullopt) const;
    /// `track` counts from 1.
    void trackState(const char* state, std::size_t track, std::size_t tracks,
                    std::optional<BurnProgress> progress = std::nullopt) const;
    /// Also writes the failure to the platform's log, unless it is a cancellation.
    void failed(const BurnFailure& failure) const;

private:
    void post(Dictionary record) const;

    const std::shared_ptr<RunLoopCenter> _center;
    const std::shared_ptr<DRObject> _burn;
};

} // namespace quarner
