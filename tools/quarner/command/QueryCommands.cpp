// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/QueryCommands.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tools/quarner/command/DiscText.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

using Drives = std::vector<std::shared_ptr<DRDevice>>;

/// The drives themselves: of several that share a name, the name stands for the last.
Drives drivesToList(const Host& host, const Target& target) {
    if (!target.image && !target.drive)
        return currentPlatform()->recording->devices();
    const auto drive = QuarnerDevice(chooseDrive(host, target)).device();
    return drive ? Drives{drive} : Drives();
}

bool writesCDs(const DRDevice& drive) {
    return valueFor(drive.info(), DRDeviceCanWriteCDKey).asBool();
}

std::string stateOf(const Host& host, const std::string& name, bool isHidden) {
    return isHidden ? "cannot be chosen, as a later drive has the same name"
                    : discOrProblem(host, QuarnerDevice(name));
}

std::string driveLine(const Host& host, const DRDevice& drive, bool isHidden) {
    const std::string name = drive.displayName();
    return safeText(name) + ": " + (writesCDs(drive) ? "writes CDs" : "cannot write CDs") + "; " +
           stateOf(host, name, isHidden);
}

void addProblem(JsonArguments& arguments, const std::string& problem) {
    if (!problem.empty())
        arguments.emplace_back("accessProblem", Value(problem));
}

std::string driveJson(const Host& host, const DRDevice& drive) {
    const std::string problem = host.accessProblem(drive.displayName());
    JsonArguments arguments = {{"name", drive.displayName()},
                               {"canWriteCD", writesCDs(drive)},
                               {"disc", problem.empty() && drive.mediaIsPresent()}};
    addProblem(arguments, problem);
    return jsonLine("drive", arguments);
}

/// Why a drive did not put its disc out, where no problem keeps the drive from being used.
std::string reasonToKeep(const QuarnerDevice& device) {
    const std::string name = device.deviceName().value_or("");
    if (!isAttached(name))
        return "the drive '" + safeText(name) + "' was unplugged";
    if (!device.isDiscInDevice() && !device.isCheckingDisc())
        return "there is no disc in the drive '" + safeText(name) + "'";
    return "the drive '" + safeText(name) + "' did not eject its disc; a program may be using it";
}

} // namespace

ExitStatus listDrives(Host& host, const Target& target, bool json) {
    const Drives drives = drivesToList(host, target);
    for (auto drive = drives.begin(); drive != drives.end(); ++drive) {
        const bool isHidden = std::any_of(drive + 1, drives.end(), [&](const auto& later) {
            return later->displayName() == (*drive)->displayName();
        });
        host.console.line(json ? driveJson(host, **drive) : driveLine(host, **drive, isHidden));
    }
    if (drives.empty())
        host.console.error("quarner: there is no drive; quarner audio --image FILE.cue makes an "
                           "image without one");
    return ExitStatus::Success;
}

ExitStatus showDisc(Host& host, const Target& target, bool json) {
    const QuarnerDevice device(chooseUsableDrive(host, target));
    if (json)
        host.console.line(jsonLine("disc", discArguments(device)));
    else
        for (const std::string& line : discLines(device))
            host.console.line(line);
    return ExitStatus::Success;
}

ExitStatus ejectDisc(Host& host, const Target& target, bool json) {
    const QuarnerDevice device(chooseDrive(host, target));
    const std::string name = device.deviceName().value_or("");
    const bool isOut = device.device() && device.device()->ejectMedia();
    const std::string problem = isOut ? "" : host.accessProblem(name);
    if (json) {
        JsonArguments arguments = {{"name", name}, {"ejected", isOut}};
        addProblem(arguments, problem);
        host.console.line(jsonLine("eject", arguments));
    } else if (isOut) {
        host.console.line("Ejected: " + safeText(name));
    }
    if (isOut)
        return ExitStatus::Success;
    host.console.error("quarner: " +
                       (problem.empty() ? reasonToKeep(device) : problemText(name, problem)));
    return ExitStatus::Failed;
}

} // namespace quarner::cli
