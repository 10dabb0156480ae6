// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>

#include "quarner/platform/DRDevice.h"
#include "quarner/scripted/Scripts.h"

namespace quarner {

/// A drive described by data: its queries return what its script says. Made by
/// `ScriptedPlatform::addDrive` and `plug`. The operations below change the script and then, as a
/// real drive would, send `DRDeviceStatusChangedNotification`, also after the drive was unplugged.
/// An unplugged drive keeps its name and has no disc, whatever its script says. `ejectMedia`
/// returns false without a disc and while a burn on this drive is under way. Any
/// thread.
class QUARNER_EXPORT ScriptedDrive : public DRDevice {
public:
    ~ScriptedDrive() override;

    /// Puts a disc into the drive, in place of the one that is there.
    virtual void insert(DiscScript disc) = 0;
    /// Changes anything of the drive or its disc:
    /// `drive->change([](DriveScript& script) { script.disc->isBlank = false; });`
    /// The function must not call back into this drive.
    virtual void change(const std::function<void(DriveScript&)>& change) = 0;
    /// Sends the notification without a change.
    virtual void reportChange() = 0;
};

} // namespace quarner
