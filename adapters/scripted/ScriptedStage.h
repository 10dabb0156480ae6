// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/scripted/Faults.h"
#include "adapters/scripted/Pulse.h"
#include "adapters/scripted/ScriptedLoops.h"
#include "quarner/scripted/BurnScripts.h"

namespace quarner {

/// What the services, drives and burns of one scripted platform share. It outlives the platform
/// for as long as a host holds on to a drive or a burn, which then goes on answering in silence.
class ScriptedStage {
public:
    /// Counts a call, runs what was set to happen with it, and answers whether it is to fail.
    bool fails(ServiceCall call, const std::string& subject = {}) {
        return faults.fails(call, subject);
    }

    void post(const DRNotification& notification) { loops.postToAll(notification); }

    std::optional<BurnStory> storyOfNewBurns() const {
        const std::lock_guard lock(_mutex);
        return _story;
    }
    void setStoryOfNewBurns(const BurnStory& story) {
        const std::lock_guard lock(_mutex);
        _story = story;
    }

    const std::shared_ptr<Pulse> pulse = std::make_shared<Pulse>();
    Faults faults;
    ScriptedLoops loops{pulse};

private:
    mutable std::mutex _mutex;
    std::optional<BurnStory> _story;
};

} // namespace quarner
