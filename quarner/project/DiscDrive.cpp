// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DiscDrive.h"

#include <array>
#include <string_view>
#include <utility>

#include "quarner/device/DiscQueries.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Texts.h"
#include "quarner/project/BurnTexts.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {
namespace {

constexpr std::array<std::pair<std::string_view, const char*>, 7> kinds = {{
    {DRDeviceMediaTypeCDROM, "CD-ROM"},
    {DRDeviceMediaTypeCDR, "CD-R"},
    {DRDeviceMediaTypeCDRW, "CD-RW"},
    {DRDeviceMediaTypeDVDROM, "DVD-ROM"},
    {DRDeviceMediaTypeDVDR, "DVD-R"},
    {DRDeviceMediaTypeDVDRW, "DVD-RW"},
    {DRDeviceMediaTypeBD, translatable("Blu-ray disc")},
}};

Value mediaValue(const DRDevice& drive, const char* key) {
    const std::optional<Dictionary> media = disc::mediaInfo(drive);
    return media ? valueFor(*media, key) : Value();
}

std::string discKindOf(const DRDevice& drive) {
    const Value value = mediaValue(drive, DRDeviceMediaTypeKey);
    const std::string* const type = value.asString();
    for (const auto& [key, name] : kinds)
        if (type != nullptr && *type == key)
            return name;
    return {};
}

std::vector<double> speedsOf(const DRDevice& drive) {
    const Value value = mediaValue(drive, DRDeviceBurnSpeedsKey);
    std::vector<double> speeds;
    if (const Array* const all = value.asArray())
        for (const Value& speed : *all)
            speeds.push_back(speed.asDouble());
    return speeds;
}

/// What can be done with a disc, in the order in which it is shown.
std::vector<const char*> statesOf(const DiscDrive& drive) {
    std::vector<const char*> states = {drive.isBlank ? translatable("blank")
                                                     : translatable("written")};
    if (drive.isAppendable && !drive.isBlank)
        states.push_back(translatable("can be added to"));
    if (drive.isErasable)
        states.push_back(translatable("can be erased"));
    else if (drive.isOverwritable)
        states.push_back(translatable("can be overwritten"));
    return states;
}

/// Why a drive did not eject its disc.
std::string reasonToKeep(const DiscDrive& drive) {
    if (!drive.problem.empty())
        return textForUnusableDrive(drive);
    if (!drive.hasDisc && !drive.isLoading)
        return text("There is no disc in the drive \"{drive}\".", {{"drive", drive.name}});
    return text("The drive \"{drive}\" did not eject its disc. A program may be using it.",
                {{"drive", drive.name}});
}

} // namespace

std::string ejectDisc(const std::shared_ptr<DRDevice>& drive) {
    if (drive && drive->ejectMedia())
        return {};
    return drive && disc::isAttached(drive) ? reasonToKeep(examineDrive(*drive))
                                            : textForBurnError(DRError::DeviceVanished);
}

std::string textForUnusableDrive(const DiscDrive& drive) {
    return text("The drive \"{drive}\" cannot be used ({problem}).",
                {{"drive", drive.name}, {"problem", drive.problem}});
}

DiscDrive examineDrive(const DRDevice& drive) {
    DiscDrive facts;
    facts.isExamined = true;
    facts.name = drive.displayName();
    facts.canWrite = valueFor(drive.info(), DRDeviceCanWriteCDKey).asBool();
    facts.hasDisc = drive.mediaIsPresent();
    facts.isLoading = drive.mediaIsTransitioning();
    facts.discKind = discKindOf(drive);
    facts.isCD = disc::isCompactDisc(drive);
    facts.isBlank = drive.mediaIsBlank();
    facts.isAppendable = drive.mediaIsAppendable();
    facts.isErasable = drive.mediaIsErasable();
    facts.isOverwritable = drive.mediaIsOverwritable();
    facts.usedSeconds = disc::usedSeconds(drive);
    facts.freeSeconds = disc::freeSeconds(drive);
    facts.usedBytes = disc::usedBytes(drive);
    facts.freeBytes = disc::freeBytes(drive);
    facts.speeds = speedsOf(drive);
    if (!facts.hasDisc)
        facts.problem = drive.accessProblem();
    return facts;
}

std::string textForDisc(const DiscDrive& drive) {
    if (!drive.problem.empty())
        return drive.problem;
    if (drive.isLoading)
        return text("examining the disc");
    if (!drive.hasDisc)
        return text("no disc");
    std::string all =
        drive.discKind.empty() ? text("a disc of unknown kind") : text(drive.discKind.c_str());
    for (const char* const state : statesOf(drive))
        all = text("{list}, {item}", {{"list", all}, {"item", text(state)}});
    return all;
}

std::string textForDiscAndFreeTime(const DiscDrive& drive) {
    const std::string disc = textForDisc(drive);
    if (!drive.hasDisc || drive.isLoading)
        return disc;
    const auto seconds = static_cast<std::int64_t>(drive.freeSeconds);
    return text("{disc}, {time} free",
                {{"disc", disc}, {"time", MultiMedia::stringWithDuration(seconds, false)}});
}

} // namespace quarner
