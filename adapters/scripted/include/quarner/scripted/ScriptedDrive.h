// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/scripted/Scripts.h"

namespace quarner {

class ScriptedBurn;
class ScriptedStage;

/// A drive made of data: it answers what its script says. Made by `ScriptedPlatform::addDrive` and
/// `plug`. The verbs below change the script and, like the drive they stand for, send
/// `DRDeviceStatusChangedNotification` afterwards, also when the drive is unplugged. An unplugged
/// drive keeps its name and has no disc, whatever its script says. Any thread.
class QUARNER_EXPORT ScriptedDrive : public DRDevice,
                                     public std::enable_shared_from_this<ScriptedDrive> {
public:
    ScriptedDrive(std::shared_ptr<ScriptedStage> stage, DriveScript script);

    // --- Verbs ---

    void insert(DiscScript disc);

    /// Changes anything of the drive or its disc:
    /// `drive->change([](DriveScript& script) { script.disc->isBlank = false; });`
    /// The change must not call back into this drive.
    void change(const std::function<void(DriveScript&)>& change);

    /// Sends the notification without a change.
    void reportChange();

    // --- DRDevice ---

    std::string displayName() const override;
    Dictionary info() const override;
    Dictionary status() const override;
    bool mediaIsPresent() const override;
    bool mediaIsTransitioning() const override;
    bool mediaIsBlank() const override;
    bool mediaIsAppendable() const override;
    bool mediaIsErasable() const override;
    bool mediaIsOverwritable() const override;
    std::optional<DRMSF> mediaSpaceUsed() const override;
    std::optional<DRMSF> mediaSpaceFree() const override;
    /// Refuses without a disc, and while a burn on this drive is under way.
    bool ejectMedia() override;

private:
    friend class ScriptedBurn;
    friend class ScriptedRecording;
    DriveScript script() const;
    bool isBurning() const;
    void setBurn(std::weak_ptr<const ScriptedBurn> burn);
    void setDetached();
    /// Why no burn of this layout can begin now; nothing when one can.
    std::optional<DRError> refusalOf(const DRLayout& layout) const;

    const std::shared_ptr<ScriptedStage> _stage;
    mutable std::mutex _mutex;
    DriveScript _script;
    bool _isDetached = false;
    std::weak_ptr<const ScriptedBurn> _burn; // the last one that was started here
};

} // namespace quarner
