// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRDevice.h"
#include "quarner/scripted/BurnScripts.h"

namespace quarner {

/// A burn that records its arguments and sends the status records that a test asks for.
/// `ScriptedPlatform::burns` lists all burns and keeps them alive. A started burn sends nothing
/// until `post` or `play` is called (or plays by itself: `ScriptedPlatform::playBurns`).
///
/// `writeLayout` fails with `DRError::DeviceVanished` if the burn has no drive; only the first call
/// has an effect. `abort` sends a Failed record with `DRError::UserCanceled` if the burn is under
/// way. Any thread.
class QUARNER_EXPORT ScriptedBurn : public DRBurn {
public:
    ~ScriptedBurn() override;

    virtual std::shared_ptr<DRDevice> device() const = 0; ///< null for a burn without a drive
    virtual Dictionary properties() const = 0;            ///< what `setProperties` was given last
    virtual DRLayout layout() const = 0; ///< what `writeLayout` was given first; empty before
    virtual bool isStarted() const = 0;  ///< `writeLayout` was called
    virtual bool isAborted() const = 0;  ///< `abort` was called, with or without effect
    virtual bool isOver() const = 0;     ///< a record with the state Done or Failed was sent

    /// Sends one status record unchanged, at any time. It is not checked for plausibility.
    virtual void post(const BurnRecord& record) = 0;
    /// The same for a record that a `BurnRecord` cannot express.
    virtual void post(Dictionary record) = 0;

    /// Lets the burn play by itself from now on. An otherwise idle run loop sends one record per
    /// turn, until the script ends, the burn is aborted (it then fails as cancelled) or its drive
    /// is unplugged. Replaces the script that is being played. Does nothing if the burn is not
    /// under way.
    virtual void play(const BurnScript& script = {}) = 0;
    virtual bool isPlaying() const = 0; ///< a script is being played and has not ended
};

} // namespace quarner
