// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/QueryCommands.h"

#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/command/DiscText.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

std::vector<std::string> drivesToList(const Host& host, const Target& target) {
    if (target.image || target.drive)
        return {chooseDrive(host, target)};
    return QuarnerDevice::devices();
}

std::string driveLine(const std::string& name) {
    const QuarnerDevice device(name);
    return safeText(name) + ": " + (device.cdBurnEnabled() ? "writes CDs" : "cannot write CDs") +
           "; " + discSummary(device);
}

std::string driveJson(const std::string& name) {
    const QuarnerDevice device(name);
    return jsonLine("drive", {{"name", name},
                              {"canWriteCD", device.cdBurnEnabled()},
                              {"disc", device.isDiscInDevice()}});
}

} // namespace

ExitStatus listDrives(Host& host, const Target& target, bool json) {
    const std::vector<std::string> names = drivesToList(host, target);
    for (const std::string& name : names)
        host.console.line(json ? driveJson(name) : driveLine(name));
    if (names.empty())
        host.console.error("quarner: there is no drive; quarner audio --image FILE.cue makes an "
                           "image without one");
    return ExitStatus::Success;
}

ExitStatus showDisc(Host& host, const Target& target, bool json) {
    const QuarnerDevice device(chooseDrive(host, target));
    if (json)
        host.console.line(jsonLine("disc", discArguments(device)));
    else
        for (const std::string& line : discLines(device))
            host.console.line(line);
    return ExitStatus::Success;
}

ExitStatus ejectDisc(Host& host, const Target& target, bool json) {
    QuarnerDevice device(chooseDrive(host, target));
    const std::string name = device.deviceName().value_or("");
    device.eject();
    const bool isOut = !device.isDiscInDevice();
    if (json)
        host.console.line(jsonLine("eject", {{"name", name}, {"ejected", isOut}}));
    else if (isOut)
        host.console.line("Ejected: " + safeText(name));
    if (!isOut)
        host.console.error("quarner: the drive '" + safeText(name) +
                           "' keeps its disc; a program may be using it");
    return isOut ? ExitStatus::Success : ExitStatus::Failed;
}

} // namespace quarner::cli
