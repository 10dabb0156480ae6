// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>

#include "tests/support/optical/ScsiCommand.h"

namespace quarner {

/// What stands behind a node in /dev. Called on one thread that all nodes share.
class SystemCallTarget {
public:
    virtual ~SystemCallTarget();

    /// Executes a command; nothing when the drive is unplugged.
    virtual std::optional<ScsiReply> execute(const ScsiCommand& command) = 0;
    /// The answer to CDROM_DRIVE_STATUS.
    virtual int driveStatus() = 0;
    /// Carries out CDROMEJECT; answers the error, 0 when the drive did it.
    virtual int eject() = 0;
    /// Carries out CDROM_LOCKDOOR; answers whether the drive did it.
    virtual bool lockTray(bool isLocked) = 0;
};

} // namespace quarner
