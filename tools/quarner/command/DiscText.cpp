// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/DiscText.h"

#include <array>
#include <cmath>
#include <utility>

#include "quarner/platform/DRKeys.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

constexpr double blocksPerSecondAtSingleSpeed = 75;

constexpr std::array<std::pair<std::string_view, const char*>, 7> kinds = {{
    {DRDeviceMediaTypeCDROM, "CD-ROM"},
    {DRDeviceMediaTypeCDR, "CD-R"},
    {DRDeviceMediaTypeCDRW, "CD-RW"},
    {DRDeviceMediaTypeDVDROM, "DVD-ROM"},
    {DRDeviceMediaTypeDVDR, "DVD-R"},
    {DRDeviceMediaTypeDVDRW, "DVD-RW"},
    {DRDeviceMediaTypeBD, "Blu-ray disc"},
}};

std::string stateText(const QuarnerDevice& device) {
    std::string text = device.isDiscBlank() ? "blank" : "written";
    if (device.isDiscAppendable() && !device.isDiscBlank())
        text += ", can be added to";
    if (device.isDiscErasable())
        text += ", can be erased";
    else if (device.isDiscOverwritable())
        text += ", can be overwritten";
    return text;
}

std::string kindOrDisc(const QuarnerDevice& device) {
    const std::string kind = discKind(device);
    return kind.empty() ? "a disc of unknown kind" : kind;
}

std::string speedsText(const Array& speeds) {
    std::string text;
    for (const Value& speed : speeds) {
        const long times = std::lround(speed.asDouble() / blocksPerSecondAtSingleSpeed);
        text += (text.empty() ? "" : ", ") + std::to_string(times) + "x";
    }
    return text;
}

} // namespace

std::string discKind(const QuarnerDevice& device) {
    const Dictionary status = device.status().value_or(Dictionary());
    const Dictionary* const media = valueFor(status, DRDeviceMediaInfoKey).asDictionary();
    const std::string* const type =
        media == nullptr ? nullptr : valueFor(*media, DRDeviceMediaTypeKey).asString();
    for (const auto& [key, name] : kinds)
        if (type != nullptr && *type == key)
            return name;
    return {};
}

std::string discSummary(const QuarnerDevice& device) {
    if (device.isCheckingDisc())
        return "examining the disc";
    if (!device.isDiscInDevice())
        return "no disc";
    return kindOrDisc(device) + ", " + stateText(device) + ", " + device.stringForFreeTimeOfDisc() +
           " free";
}

std::string discOrProblem(const Host& host, const QuarnerDevice& device) {
    const std::string problem = host.accessProblem(device.deviceName().value_or(""));
    return problem.empty() ? discSummary(device) : safeText(problem);
}

std::vector<std::string> discLines(const QuarnerDevice& device) {
    std::vector<std::string> lines = {"Drive:   " + safeText(device.deviceName().value_or(""))};
    if (!device.isDiscInDevice()) {
        lines.push_back("Disc:    " + discSummary(device));
        return lines;
    }
    lines.push_back("Disc:    " + kindOrDisc(device) + ", " + stateText(device));
    lines.push_back("Used:    " + device.stringForUsedTimeOfDisc() + ", " +
                    device.stringForUsedSizeOfDisc());
    lines.push_back("Free:    " + device.stringForFreeTimeOfDisc() + ", " +
                    device.stringForFreeSizeOfDisc());
    const Array speeds = device.availableBurnSpeeds().value_or(Array());
    if (!speeds.empty())
        lines.push_back("Speeds:  " + speedsText(speeds));
    return lines;
}

JsonArguments discArguments(const QuarnerDevice& device) {
    return {{"name", device.deviceName().value_or("")},
            {"present", device.isDiscInDevice()},
            {"kind", discKind(device)},
            {"cd", device.isCDDisc()},
            {"blank", device.isDiscBlank()},
            {"appendable", device.isDiscAppendable()},
            {"erasable", device.isDiscErasable()},
            {"overwritable", device.isDiscOverwritable()},
            {"usedTime", device.usedTimeOfDisc()},
            {"freeTime", device.freeTimeOfDisc()},
            {"usedSize", device.usedSizeOfDisc()},
            {"freeSize", device.freeSizeOfDisc()},
            {"speeds", device.availableBurnSpeeds().value_or(Array())}};
}

} // namespace quarner::cli
