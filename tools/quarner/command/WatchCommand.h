// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// `quarner watch`: reports drives that come and go and what changes in them, until it is
/// interrupted or nobody reads any more.
class WatchCommand : private QuarnerDeviceDelegate {
public:
    /// The host must outlive the command. Throws `UsageProblem` when the drive that is named is
    /// not there.
    WatchCommand(Host& host, const Target& target, bool json);
    ~WatchCommand() override;

    /// Runs the main loop until the end. Returns `ExitStatus::Success` if the output cannot be
    /// written any more, otherwise `ExitStatus::Canceled`.
    ExitStatus run();

private:
    /// One drive, and the delegate of its changes.
    struct WatchedDrive;

    void deviceDidAppeared(const std::string& deviceName) override;
    void deviceDidDisappeared(const std::string& deviceName) override;

    bool isWanted(const std::string& name) const { return !_only || *_only == name; }
    void watch(const std::string& name);
    void tell(const char* event, const std::string& name,
              const std::function<std::string()>& change);

    Host& _host;
    const bool _json;
    std::optional<std::string> _only;
    bool _isInterrupted = false;
    QuarnerDevice _anyDrive; ///< bound to none: it reports all that come and go
    std::map<std::string, std::unique_ptr<WatchedDrive>> _drives;
};

} // namespace quarner::cli
