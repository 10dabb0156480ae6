// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <string>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// The node of a drive, opened exclusively, for queries to the kernel. Once libburn owns a drive it
/// may wait for hours for a disc to become ready, so it gets a drive only after these queries.
class DriveNode {
public:
    /// Opens it with `openDrive`. Throws `BurnFailure` if that fails.
    DriveNode(const std::string& path, std::chrono::milliseconds timeout, const StopSignal* stop);
    ~DriveNode();
    DriveNode(const DriveNode&) = delete;
    DriveNode& operator=(const DriveNode&) = delete;

    int descriptor() const { return _descriptor; }

    /// Whether a disc is being loaded or examined.
    bool isLoading() const;
    bool isReady() const; ///< with a disc
    /// False also for an open drive without a tray.
    bool isTrayOpen() const;

    /// Unlocks and opens the tray, whatever the state of the disc. Retries for two seconds while
    /// other programs have the drive open non-exclusively. Returns whether the tray was opened;
    /// false if it was open before.
    bool openTray() const;

    /// Whether the drive can open its tray and close it again without the user. The tray of many
    /// portable computers must be pushed in.
    bool canReload() const;

    /// Opens the tray as `openTray` does and closes it. Returns whether the drive executed both.
    bool reload() const;

private:
    int status() const;
    bool eject() const;

    const int _descriptor;
};

} // namespace quarner
