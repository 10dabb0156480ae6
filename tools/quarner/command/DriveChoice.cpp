// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/DriveChoice.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/display.h"
#include "quarner/util/Paths.h"
#include "tools/quarner/options/NearestName.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

namespace fs = std::filesystem;
using words::_;

constexpr DiscKind allKinds[] = {DiscKind::Audio, DiscKind::Data};

std::string imageHint(std::optional<DiscKind> kind) {
    if (kind)
        return _("--image FILE{extension} makes an image without a drive.",
                 {{"extension", extensionFor(*kind)}});
    return _("--image FILE.cue or FILE.iso makes an image without a drive.");
}

bool canWrite(const std::string& name) { return QuarnerDevice(name).cdBurnEnabled(); }

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += "\n  " + (canWrite(name) ? safeText(name)
                                         : _("{drive} (cannot write CDs)", {{"drive", name}}));
    return text;
}

std::string namedDrive(const std::string& name, std::optional<DiscKind> toBurn) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    if (all.empty())
        throw UsageProblem(_("there is no drive '{drive}', nor any other.", {{"drive", name}}) +
                           " " + imageHint(toBurn));
    if (std::find(all.begin(), all.end(), name) == all.end())
        throw UsageProblem(
            _("there is no drive '{drive}'; did you mean '{nearest}'? The drives are:",
              {{"drive", name}, {"nearest", nearestName(name, all)}}) +
            listed(all));
    if (toBurn && !canWrite(name))
        throw UsageProblem(_("the drive '{drive}' cannot write CDs.", {{"drive", name}}) + " " +
                           imageHint(toBurn));
    return name;
}

std::string onlyDrive(std::optional<DiscKind> toBurn) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    std::vector<std::string> fit;
    std::copy_if(all.begin(), all.end(), std::back_inserter(fit),
                 [toBurn](const std::string& name) { return !toBurn || canWrite(name); });
    if (fit.size() == 1)
        return fit.front();
    if (all.empty())
        throw UsageProblem(_("there is no drive.") + " " + imageHint(toBurn));
    if (fit.empty())
        throw UsageProblem(_("no drive can write CDs.") + " " + imageHint(toBurn) + " " +
                           _("The drives are:") + listed(all));
    throw UsageProblem(_("there are several drives; choose one with --drive NAME:") + listed(fit));
}

/// The kind of disc of which an image of that name would be.
std::optional<DiscKind> kindOfImage(const std::string& name) {
    const std::string extension = "." + Paths::lowercaseExtension(name);
    for (const DiscKind kind : allKinds)
        if (extension == extensionFor(kind) && !fs::path(name).extension().empty())
            return kind;
    return std::nullopt;
}

/// Why an image cannot have this name.
std::string problemOfName(const std::string& name, std::optional<DiscKind> kind,
                          std::optional<DiscKind> found) {
    if (!kind)
        return _("the image's name must end in .cue or .iso, as in mix.cue, but is '{name}'",
                 {{"name", name}});
    if (!found)
        return _("the image's name must end in {extension}, as in mix{extension}, but is '{name}'",
                 {{"extension", extensionFor(*kind)}, {"name", name}});
    return _("the image's name must end in {extension}, as in mix{extension}, but is '{name}'; an "
             "image that ends in {otherExtension} is made by quarner {command}",
             {{"extension", extensionFor(*kind)},
              {"name", name},
              {"otherExtension", extensionFor(*found)},
              {"command", commandFor(*found)}});
}

void checkExtension(const std::string& name, std::optional<DiscKind> kind) {
    const std::optional<DiscKind> found = kindOfImage(name);
    if (!found || (kind && *found != *kind))
        throw UsageProblem(problemOfName(name, kind, found));
}

} // namespace

std::string chooseDrive(const Host& host, const Target& target, std::optional<DiscKind> toBurn) {
    if (target.image) {
        checkExtension(*target.image, toBurn);
        return host.addImageDrive(
            {.path = *target.image, .minutes = target.capacity, .loadExisting = !toBurn});
    }
    return target.drive ? namedDrive(*target.drive, toBurn) : onlyDrive(toBurn);
}

} // namespace quarner::cli
