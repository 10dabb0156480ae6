// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Through this interface a `QuarnerDevice` reports to its host. Every operation is optional and
/// comes on the run loop of the thread that made the wrapper. The spelling is part of the
/// interface.
class QUARNER_EXPORT QuarnerDeviceDelegate {
public:
    virtual ~QuarnerDeviceDelegate();

    /// The drive that the wrapper is bound to reported a change: of the disc, the tray, the speed.
    virtual void deviceStatusDidChanged() {}

    /// `deviceDidAppeared:` Any drive was attached: its display name.
    virtual void deviceDidAppeared(const std::string& /*deviceName*/) {}

    /// `deviceDidDisappeared:` Any drive was detached, the bound one included: its display name.
    virtual void deviceDidDisappeared(const std::string& /*deviceName*/) {}
};

} // namespace quarner
