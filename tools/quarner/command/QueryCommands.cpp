// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/Commands.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/display.h"
#include "quarner/platform/Platform.h"
#include "quarner/project/DiscDrive.h"
#include "quarner/project/DiscProjectRecords.h"
#include "quarner/util/MultiMedia.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/quarner/text/Columns.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;
using Drives = std::vector<std::shared_ptr<DRDevice>>;

constexpr double sectorsPerSecondAtSingleSpeed = 75; // Red Book

std::shared_ptr<DRDevice> chosenDrive(const Host& host, const Target& target) {
    return QuarnerDevice(chooseDrive(host, target)).device();
}

/// The drives themselves: of several that share a name, the name stands for the last.
Drives drivesToList(const Host& host, const Target& target) {
    if (!target.image && !target.drive)
        return currentPlatform()->recording->devices();
    const auto drive = chosenDrive(host, target);
    return drive ? Drives{drive} : Drives();
}

std::string driveLine(const DiscDrive& drive, bool isHidden) {
    const char* const message = drive.canWrite ? translatable("{drive}: writes CDs; {state}")
                                               : translatable("{drive}: cannot write CDs; {state}");
    return _(message,
             {{"drive", drive.name},
              {"state", isHidden ? _("cannot be chosen, as a later drive has the same name")
                                 : textForDiscAndFreeTime(drive)}});
}

std::string jsonWithProblem(const char* event, JsonArguments arguments, const DiscDrive& drive) {
    if (!drive.problem.empty())
        arguments.emplace_back("accessProblem", Value(drive.problem));
    return jsonLine(event, arguments);
}

std::string driveJson(const DiscDrive& drive) {
    return jsonWithProblem(
        "drive", {{"name", drive.name}, {"canWriteCD", drive.canWrite}, {"disc", drive.hasDisc}},
        drive);
}

/// With why the drive cannot be used if that is why it kept its disc.
std::string ejectJson(const std::string& name, const std::string& problem,
                      const std::shared_ptr<DRDevice>& device) {
    if (problem.empty())
        return jsonLine("eject", {{"name", name}, {"ejected", true}});
    return jsonWithProblem("eject", {{"name", name}, {"ejected", false}, {"text", problem}},
                           device ? examineDrive(*device) : DiscDrive());
}

std::string speedsText(const std::vector<double>& speeds) {
    std::string text;
    for (const double speed : speeds)
        text += (text.empty() ? "" : ", ") +
                std::to_string(std::lround(speed / sectorsPerSecondAtSingleSpeed)) + "x";
    return text;
}

std::vector<std::string> discLines(const DiscDrive& drive) {
    std::vector<std::string> lines = {labelled(Label::Drive, safeText(drive.name)),
                                      labelled(Label::Disc, safeText(textForDisc(drive)))};
    if (!drive.hasDisc)
        return lines;
    const auto amounts = [](std::uint64_t seconds, std::uint64_t bytes) {
        return MultiMedia::stringWithDuration(static_cast<std::int64_t>(seconds), false) + ", " +
               MultiMedia::stringWithFilesize(static_cast<std::int64_t>(bytes));
    };
    lines.push_back(labelled(Label::Used, amounts(drive.usedSeconds, drive.usedBytes)));
    lines.push_back(labelled(Label::Free, amounts(drive.freeSeconds, drive.freeBytes)));
    if (!drive.speeds.empty())
        lines.push_back(labelled(Label::Speeds, speedsText(drive.speeds)));
    return lines;
}

} // namespace

ExitStatus listDrives(Host& host, const Target& target, bool json) {
    const Drives drives = drivesToList(host, target);
    for (auto drive = drives.begin(); drive != drives.end(); ++drive) {
        const DiscDrive facts = examineDrive(**drive);
        const bool isHidden = std::any_of(drive + 1, drives.end(), [&](const auto& later) {
            return later->displayName() == facts.name;
        });
        host.console.line(json ? driveJson(facts) : driveLine(facts, isHidden));
    }
    if (drives.empty())
        host.console.error(
            "quarner: " +
            _("there is no drive; quarner audio --image FILE.cue makes an image without one"));
    return ExitStatus::Success;
}

ExitStatus showDisc(Host& host, const Target& target, bool json) {
    const auto device = chosenDrive(host, target);
    const DiscDrive drive = device ? examineDrive(*device) : DiscDrive();
    if (!drive.problem.empty())
        throw UsageProblem(safeText(textForUnusableDrive(drive)));
    if (json)
        host.console.line(jsonLine("disc", recordOf(drive)));
    else
        for (const std::string& line : discLines(drive))
            host.console.line(line);
    return ExitStatus::Success;
}

ExitStatus ejectDisc(Host& host, const Target& target, bool json) {
    const std::string name = chooseDrive(host, target);
    const auto device = QuarnerDevice(name).device();
    const std::string problem = quarner::ejectDisc(device);
    const bool isOut = problem.empty();
    if (json)
        host.console.line(ejectJson(name, problem, device));
    else if (isOut)
        host.console.line(_("Ejected: {drive}", {{"drive", name}}));
    if (!isOut)
        host.console.error("quarner: " + safeText(problem));
    return isOut ? ExitStatus::Success : ExitStatus::Failed;
}

} // namespace quarner::cli
