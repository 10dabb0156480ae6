// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/runloop/RunLoops.h"
#include "quarner/platform/DRDevice.h"

namespace quarner {

/// The attached drives of one kind. Every operation may be called on any thread.
class DriveList {
public:
    /// A derived class unplugs its drives: whoever still has one finds no disc in it.
    virtual ~DriveList();
    DriveList(const DriveList&) = delete;
    DriveList& operator=(const DriveList&) = delete;

    /// Returns the attached drives in a stable order.
    virtual std::vector<std::shared_ptr<DRDevice>> devices() = 0;

protected:
    explicit DriveList(std::shared_ptr<RunLoops> runLoops);

    const std::shared_ptr<RunLoops>& runLoops() const { return _runLoops; }
    /// Sends a notification about a drive to every run loop.
    void notify(const char* notification, std::shared_ptr<DRDevice> drive) const;

private:
    const std::shared_ptr<RunLoops> _runLoops;
};

using DriveLists = std::vector<std::shared_ptr<DriveList>>;

/// Returns a name for a new drive that none of these has: `wanted` if it is free, otherwise the
/// first free one of "wanted (2)", "wanted (3)" and so on.
std::string uniqueDriveName(const std::string& wanted,
                            const std::vector<std::shared_ptr<DRDevice>>& drives);

} // namespace quarner
