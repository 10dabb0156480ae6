// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/display.h"
#include "quarner/project/DiscDrive.h"
#include "tools/quarner/command/Commands.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

class WatchCommand : private QuarnerDeviceDelegate {
public:
    WatchCommand(Host& host, const Target& target, bool json);
    ~WatchCommand() override;
    ExitStatus run();

private:
    /// One drive, and the delegate of its changes.
    struct WatchedDrive;

    void deviceDidAppeared(const std::string& deviceName) override;
    void deviceDidDisappeared(const std::string& deviceName) override;

    bool isWanted(const std::string& name) const { return !_only || *_only == name; }
    void watch(const std::string& name);
    /// From here on no change is missed.
    void tellStart() const;
    void tell(const char* event, const std::string& name,
              const std::function<std::string()>& change);

    Host& _host;
    const bool _json;
    std::optional<std::string> _only;
    bool _isInterrupted = false;
    QuarnerDevice _anyDrive; ///< bound to none: it reports all that come and go
    std::map<std::string, std::unique_ptr<WatchedDrive>> _drives;
};

struct WatchCommand::WatchedDrive : QuarnerDeviceDelegate {
    WatchedDrive(WatchCommand& owner, const std::string& deviceName)
        : command(owner), name(deviceName), device(deviceName) {
        device.setDelegate(this);
    }

    void deviceStatusDidChanged() override {
        command.tell("deviceStatusDidChanged", name, [this] { return state(); });
    }
    std::string state() const {
        const auto drive = device.device();
        return drive ? safeText(textForDiscAndFreeTime(examineDrive(*drive))) : std::string();
    }

    WatchCommand& command;
    const std::string name;
    QuarnerDevice device;
};

WatchCommand::WatchCommand(Host& host, const Target& target, bool json)
    : _host(host), _json(json), _anyDrive("") {
    if (target.image || target.drive)
        _only = chooseDrive(host, target);
    _anyDrive.setDelegate(this);
    for (const std::string& name : QuarnerDevice::devices())
        watch(name);
}

WatchCommand::~WatchCommand() { _host.onInterruption(nullptr); }

ExitStatus WatchCommand::run() {
    _host.onInterruption([this] { _isInterrupted = true; });
    tellStart();
    if (!_host.receivesDriveEvents())
        _host.console.error("quarner: " + _("the device manager (udev) is not running: changes of "
                                            "optical drives and discs will not be reported"));
    _host.loop.runUntil([this] { return _isInterrupted || _host.console.isBroken(); });
    return _host.console.isBroken() ? ExitStatus::Success : ExitStatus::Canceled;
}

void WatchCommand::tellStart() const {
    if (_json) {
        Array names;
        for (const auto& [name, drive] : _drives)
            names.emplace_back(name);
        _host.console.line(jsonLine("watching", {{"drives", names}}));
        return;
    }
    for (const auto& [name, drive] : _drives)
        _host.console.line(safeText(name) + ": " + drive->state());
    if (_drives.empty())
        _host.console.line(_("There is no drive yet."));
}

void WatchCommand::watch(const std::string& name) {
    if (isWanted(name))
        _drives[name] = std::make_unique<WatchedDrive>(*this, name);
}

void WatchCommand::deviceDidAppeared(const std::string& deviceName) {
    if (!isWanted(deviceName))
        return;
    tell("deviceDidAppeared", deviceName, [] { return _("appeared"); });
    watch(deviceName);
}

void WatchCommand::deviceDidDisappeared(const std::string& deviceName) {
    if (!isWanted(deviceName))
        return;
    tell("deviceDidDisappeared", deviceName, [] { return _("disappeared"); });
    _drives.erase(deviceName);
}

/// The change is not asked for where it is not told: that may take the drive.
void WatchCommand::tell(const char* event, const std::string& name,
                        const std::function<std::string()>& change) {
    _host.console.line(_json ? jsonLine(event, {{"name", name}})
                             : safeText(name) + ": " + change());
}

} // namespace

ExitStatus watchDrives(Host& host, const Target& target, bool json) {
    return WatchCommand(host, target, json).run();
}

} // namespace quarner::cli
