// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "adapters/scripted/ScriptedContext.h"
#include "quarner/platform/DRBurn.h"
#include "quarner/scripted/ScriptedBurn.h"
#include "quarner/scripted/ScriptedDrive.h"

namespace quarner {

/// The drive of a scripted platform. Any thread.
class ScriptedDriveImpl : public ScriptedDrive,
                          public std::enable_shared_from_this<ScriptedDriveImpl> {
public:
    ScriptedDriveImpl(std::shared_ptr<ScriptedContext> context, DriveScript script);

    void insert(DiscScript disc) override;
    void change(const std::function<void(DriveScript&)>& change) override;
    void reportChange() override;

    std::string displayName() const override;
    Dictionary info() const override;
    Dictionary status() const override;
    bool mediaIsPresent() const override;
    bool mediaIsTransitioning() const override;
    std::string accessProblem() const override;
    bool mediaIsBlank() const override;
    bool mediaIsAppendable() const override;
    bool mediaIsErasable() const override;
    bool mediaIsOverwritable() const override;
    std::optional<DRMSF> mediaSpaceUsed() const override;
    std::optional<DRMSF> mediaSpaceFree() const override;
    bool ejectMedia() override;

    /// Returns why no burn of this layout can start now; `std::nullopt` if one can.
    std::optional<DRError> refusalOf(const DRLayout& layout) const;
    void setBurn(std::weak_ptr<const ScriptedBurn> burn);
    void setDetached();

private:
    DriveScript script() const;
    bool isBurning() const;

    const std::shared_ptr<ScriptedContext> _context;
    mutable std::mutex _mutex;
    DriveScript _script;
    bool _isDetached = false;
    std::weak_ptr<const ScriptedBurn> _burn; // the last one that was started on this drive
};

} // namespace quarner
