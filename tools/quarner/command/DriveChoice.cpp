// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/DriveChoice.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/display.h"
#include "quarner/util/Paths.h"
#include "tools/quarner/options/NearestName.h"

namespace quarner::cli {
namespace {

namespace fs = std::filesystem;

constexpr DiscKind allKinds[] = {DiscKind::Audio, DiscKind::Data};

std::string imageHint(std::optional<DiscKind> kind) {
    const std::string name =
        kind ? std::string("FILE") + extensionFor(*kind) : "FILE.cue or FILE.iso";
    return "--image " + name + " makes an image without a drive.";
}

bool canWrite(const std::string& name) { return QuarnerDevice(name).cdBurnEnabled(); }

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += "\n  " + safeText(name) + (canWrite(name) ? "" : " (cannot write CDs)");
    return text;
}

std::string namedDrive(const std::string& name, std::optional<DiscKind> toBurn) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    if (all.empty())
        throw UsageProblem("there is no drive '" + safeText(name) + "', nor any other. " +
                           imageHint(toBurn));
    if (std::find(all.begin(), all.end(), name) == all.end())
        throw UsageProblem("there is no drive '" + safeText(name) + "'; did you mean '" +
                           safeText(nearestName(name, all)) + "'? The drives are:" + listed(all));
    if (toBurn && !canWrite(name))
        throw UsageProblem("the drive '" + safeText(name) + "' cannot write CDs. " +
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
        throw UsageProblem("there is no drive. " + imageHint(toBurn));
    if (fit.empty())
        throw UsageProblem("no drive can write CDs. " + imageHint(toBurn) +
                           " The drives are:" + listed(all));
    throw UsageProblem("there are several drives; choose one with --drive NAME:" + listed(fit));
}

/// The kind of disc of which an image of that name would be.
std::optional<DiscKind> kindOfImage(const std::string& name) {
    const std::string extension = "." + Paths::lowercaseExtension(name);
    for (const DiscKind kind : allKinds)
        if (extension == extensionFor(kind) && !fs::path(name).extension().empty())
            return kind;
    return std::nullopt;
}

void checkExtension(const std::string& name, std::optional<DiscKind> kind) {
    const std::optional<DiscKind> found = kindOfImage(name);
    if (found && (!kind || *found == *kind))
        return;
    const std::string endings = kind ? extensionFor(*kind) : ".cue or .iso";
    std::string text = "the image's name must end in " + endings + ", as in " + std::string("mix") +
                       extensionFor(kind.value_or(DiscKind::Audio)) + ", but is '" +
                       safeText(name) + "'";
    if (found)
        text += std::string("; an image that ends in ") + extensionFor(*found) +
                " is made by quarner " + commandFor(*found);
    throw UsageProblem(text);
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
