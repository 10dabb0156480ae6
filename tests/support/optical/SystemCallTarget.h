// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "tests/support/optical/ScsiCommand.h"

namespace quarner {

/// The implementation of a node in /dev. Called on one thread, which each node has of its own.
class SystemCallTarget {
public:
    virtual ~SystemCallTarget();

    /// Executes a command. Returns `std::nullopt` if the drive is unplugged.
    virtual std::optional<ScsiReply> execute(const ScsiCommand& command) = 0;
    /// The node is being opened.
    virtual void open() = 0;
    /// Returns the result of CDROM_DRIVE_STATUS; -1 if the drive is unplugged.
    virtual int driveStatus() = 0;
    /// Returns the result of CDROM_GET_CAPABILITY.
    virtual int capabilities() = 0;
    /// Returns the result of CDROM_MEDIA_CHANGED.
    virtual bool takeMediaChange() = 0;
    /// Returns the result of BLKGETSIZE64, in bytes.
    virtual std::uint64_t size() = 0;
    /// Executes CDROMEJECT. Returns its error, or 0.
    virtual int eject() = 0;
    /// Executes CDROMCLOSETRAY. Returns its error, or 0.
    virtual int closeTray() = 0;
    /// Executes CDROM_LOCKDOOR. Returns whether it succeeded.
    virtual bool lockTray(bool isLocked) = 0;
};

} // namespace quarner
