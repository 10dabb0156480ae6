// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/scripted/Faults.h"
#include "adapters/scripted/ScriptedLoops.h"
#include "adapters/scripted/Ticker.h"
#include "quarner/scripted/BurnScripts.h"

namespace quarner {

/// State shared by the services, drives and burns of one scripted platform. It outlives the
/// platform for as long as a host keeps a drive or a burn, whose queries then still return values.
class ScriptedContext {
public:
    /// Counts a call, runs its action, and returns whether the call must fail.
    bool fails(ServiceCall call, const std::string& subject = {}) {
        return faults.fails(call, subject);
    }

    void post(const DRNotification& notification) { loops.postToAll(notification); }

    std::optional<BurnScript> scriptOfNewBurns() const {
        const std::lock_guard lock(_mutex);
        return _script;
    }
    void setScriptOfNewBurns(const BurnScript& script) {
        const std::lock_guard lock(_mutex);
        _script = script;
    }

    const std::shared_ptr<Ticker> ticker = std::make_shared<Ticker>();
    Faults faults;
    ScriptedLoops loops{ticker};

private:
    mutable std::mutex _mutex;
    std::optional<BurnScript> _script;
};

} // namespace quarner
