// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// The reports of a `QuarnerDevice` to its host. Every operation does nothing by default and is
/// called from the run loop of the thread that made the handle. The spelling is part of the
/// interface.
class QUARNER_EXPORT QuarnerDeviceDelegate {
public:
    virtual ~QuarnerDeviceDelegate();

    /// The drive that the handle is bound to reported a change: a disc came or went, its content
    /// changed, or a burn on the drive began or ended. May come without a visible change. A change
    /// of speed is not reported: query `currentBurnSpeed` while a burn runs.
    virtual void deviceStatusDidChanged() {}

    /// `deviceDidAppeared:` A drive was attached: its display name. Called for every drive.
    virtual void deviceDidAppeared(const std::string& /*deviceName*/) {}

    /// `deviceDidDisappeared:` A drive was detached: its display name. The handle stays bound to a
    /// detached drive.
    virtual void deviceDidDisappeared(const std::string& /*deviceName*/) {}
};

} // namespace quarner
