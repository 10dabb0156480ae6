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
        kind ? std::string("FILE") + traitsOf(*kind).extension : "FILE.cue or FILE.iso";
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
    if (!isAttached(name))
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
        if (extension == traitsOf(kind).extension && !fs::path(name).extension().empty())
            return kind;
    return std::nullopt;
}

void checkExtension(const std::string& name, std::optional<DiscKind> kind) {
    const std::optional<DiscKind> found = kindOfImage(name);
    if (found && (!kind || *found == *kind))
        return;
    const std::string endings = kind ? traitsOf(*kind).extension : ".cue or .iso";
    std::string text = "the image's name must end in " + endings + ", as in " +
                       traitsOf(kind.value_or(DiscKind::Audio)).example + ", but is '" +
                       safeText(name) + "'";
    if (found)
        text += std::string("; an image that ends in ") + traitsOf(*found).extension +
                " is made by quarner " + traitsOf(*found).command;
    throw UsageProblem(text);
}

void checkFolder(const fs::path& folder) {
    std::error_code error;
    bool isFolder = false;
    do
        isFolder = fs::is_directory(folder, error);
    while (error == std::errc::interrupted);
    if (isFolder)
        return;
    const std::string name = "the folder '" + safeText(folder.string()) + "' ";
    if (error && error != std::errc::no_such_file_or_directory)
        throw UsageProblem(name + "cannot be used: " + error.message());
    throw UsageProblem(name + "does not exist; make it, or put the image elsewhere");
}

} // namespace

std::string imagePath(const std::string& name, std::optional<DiscKind> kind) {
    checkExtension(name, kind);
    std::error_code error;
    const fs::path path = fs::absolute(name, error); // empty in a folder that was deleted
    if (fs::is_directory(path, error))
        throw UsageProblem("'" + safeText(name) + "' is a folder; name a file in it");
    checkFolder(path.parent_path());
    return path.string();
}

std::string chooseDrive(const Host& host, const Target& target, std::optional<DiscKind> toBurn) {
    if (target.image)
        return host.addImageDrive({.path = imagePath(*target.image, toBurn),
                                   .minutes = target.capacity,
                                   .loadExisting = !toBurn});
    return target.drive ? namedDrive(*target.drive, toBurn) : onlyDrive(toBurn);
}

bool isAttached(const std::string& name) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    return std::find(all.begin(), all.end(), name) != all.end();
}

} // namespace quarner::cli
