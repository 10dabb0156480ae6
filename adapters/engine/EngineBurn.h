// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>

#include "adapters/engine/BurnTarget.h"
#include "adapters/engine/BurnThreads.h"
#include "adapters/engine/DataDiscService.h"
#include "adapters/engine/ProgressMeter.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/runloop/RunLoops.h"
#include "quarner/platform/DRBurn.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// The services shared by all burns of a recorder.
struct BurnServices {
    /// Owned by the recorder. Weak, because a queued record in one of the loops owns the burn.
    std::weak_ptr<RunLoops> runLoops;
    std::shared_ptr<PCMService> pcm;
    std::shared_ptr<DataDiscService> dataDiscs = nullptr; ///< null where no data discs are written
    std::shared_ptr<BurnThreads> threads;
    Clock clock;
};

/// A burn that the engine runs on its own thread. Records are sent to the run loop of the thread
/// that called `writeLayout`. Must be owned by a shared pointer.
class EngineBurn : public DRBurn, public std::enable_shared_from_this<EngineBurn> {
public:
    /// With a null target the burn fails with `DRError::DeviceVanished`.
    EngineBurn(BurnServices services, std::shared_ptr<BurnTarget> target);

    void setProperties(Dictionary properties) override;
    /// Does nothing after the first call.
    void writeLayout(DRLayout layout) override;
    void abort() override;

private:
    bool start();
    Dictionary properties();

    const BurnServices _services;
    const std::shared_ptr<BurnTarget> _target;
    const std::shared_ptr<StopSignal> _stop = std::make_shared<StopSignal>();

    std::mutex _mutex;
    Dictionary _properties;
    bool _isStarted = false;
};

} // namespace quarner
