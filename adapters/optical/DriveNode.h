// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <string>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// The node of a drive, open here and closed to everybody else, for what the kernel itself can be
/// asked: libburn, once it has the drive, waits for a disc that does not get ready, for hours.
class DriveNode {
public:
    /// Opens it: see `openDrive`. Throws `BurnFailure` when that fails.
    DriveNode(const std::string& path, std::chrono::milliseconds patience, const StopSignal* stop);
    ~DriveNode();
    DriveNode(const DriveNode&) = delete;
    DriveNode& operator=(const DriveNode&) = delete;

    int descriptor() const { return _descriptor; }

    /// A disc is being loaded or examined.
    bool isLoading() const;

    /// Unlocks the tray and opens it, in whatever state the disc is; tries again for two seconds
    /// while others only look at the drive. Answers whether it is open then; false also when it was
    /// open before.
    bool openTray() const;

private:
    const int _descriptor;
};

/// Opens the node of a drive as libburn does, which does not tell why it fails. One that another
/// program has open is tried again until the time is over, or the burn is stopped: throws
/// `BurnFailure` then (`stop` may be null). Answers the descriptor, or an error of errno, negated.
int openDrive(const std::string& path, std::chrono::milliseconds patience, const StopSignal* stop);

/// Waits between two attempts to open a drive, or until the burn is stopped: throws `BurnFailure`
/// then. `stop` may be null.
void waitForDrive(const StopSignal* stop);

} // namespace quarner
