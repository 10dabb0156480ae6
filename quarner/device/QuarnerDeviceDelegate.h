// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Through this interface a `QuarnerDevice` reports to its host. Every operation is optional and
/// is called on the run loop of the thread that made the handle. The spelling is part of the
/// interface.
class QUARNER_EXPORT QuarnerDeviceDelegate {
public:
    virtual ~QuarnerDeviceDelegate();

    /// The drive that the handle is bound to reported a change: a disc came or went, its content
    /// changed, or a burn on the drive began or ended. May come without a visible change. A change
    /// of speed is not reported: query `currentBurnSpeed` while a burn runs.
    virtual void deviceStatusDidChanged() {}

    /// `deviceDidAppeared:` Any drive was attached: its display name.
    virtual void deviceDidAppeared(const std::string& /*deviceName*/) {}

    /// `deviceDidDisappeared:` Any drive was detached, the bound one included: its display name.
    /// The handle stays bound to the detached drive.
    virtual void deviceDidDisappeared(const std::string& /*deviceName*/) {}
};

} // namespace quarner
