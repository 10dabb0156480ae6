// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/DriveChoice.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/util/Paths.h"
#include "tools/quarner/options/NearestName.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

namespace fs = std::filesystem;

constexpr char imageHint[] = "--image FILE.cue makes an image without a drive.";

bool canWrite(const std::string& name) { return QuarnerDevice(name).cdBurnEnabled(); }

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += "\n  " + safeText(name) + (canWrite(name) ? "" : " (cannot write CDs)");
    return text;
}

std::string namedDrive(const std::string& name, DriveUse use) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    if (all.empty())
        throw UsageProblem("there is no drive '" + safeText(name) + "', nor any other. " +
                           imageHint);
    if (std::find(all.begin(), all.end(), name) == all.end())
        throw UsageProblem("there is no drive '" + safeText(name) + "'; did you mean '" +
                           safeText(nearestName(name, all)) + "'? The drives are:" + listed(all));
    if (use == DriveUse::Write && !canWrite(name))
        throw UsageProblem("the drive '" + safeText(name) + "' cannot write CDs. " + imageHint);
    return name;
}

std::string onlyDrive(DriveUse use) {
    const std::vector<std::string> all = QuarnerDevice::devices();
    std::vector<std::string> fit;
    std::copy_if(all.begin(), all.end(), std::back_inserter(fit),
                 [use](const std::string& name) { return use == DriveUse::Any || canWrite(name); });
    if (fit.size() == 1)
        return fit.front();
    if (all.empty())
        throw UsageProblem(std::string("there is no drive. ") + imageHint);
    if (fit.empty())
        throw UsageProblem("no drive can write CDs. " + std::string(imageHint) +
                           " The drives are:" + listed(all));
    throw UsageProblem("there are several drives; choose one with --drive NAME:" + listed(fit));
}

} // namespace

std::string imagePath(const std::string& name) {
    const fs::path given(name);
    if (Paths::lowercaseExtension(name) != "cue" || given.extension().empty())
        throw UsageProblem("the image's name must end in .cue, as in mix.cue, but is '" +
                           safeText(name) + "'");
    const fs::path path = fs::absolute(given);
    std::error_code ignored;
    if (fs::is_directory(path, ignored))
        throw UsageProblem("'" + safeText(name) + "' is a folder; name a file in it");
    if (!fs::is_directory(path.parent_path(), ignored))
        throw UsageProblem("the folder '" + safeText(path.parent_path().string()) +
                           "' does not exist; make it, or put the image elsewhere");
    return path.string();
}

std::string chooseDrive(const Host& host, const Target& target, DriveUse use) {
    if (target.image) {
        const auto disc = use == DriveUse::Write ? ImageRequest::Disc::Blank
                                                 : ImageRequest::Disc::ExistingOrBlank;
        return host.addImageDrive({imagePath(*target.image), target.capacity, disc});
    }
    return target.drive ? namedDrive(*target.drive, use) : onlyDrive(use);
}

} // namespace quarner::cli
