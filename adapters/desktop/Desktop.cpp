// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/desktop.h"

#include <mutex>
#include <utility>

#include "adapters/desktop/DesktopPlatform.h"
#include "adapters/image/ImageDrives.h"
#include "adapters/image/ImagePlace.h"
#include "adapters/optical/OpticalDrives.h"

namespace quarner {
namespace {

struct Installed {
    std::mutex mutex;
    std::shared_ptr<DesktopPlatform> desktop; // null until it is installed
};

// Never destroyed: the platform may still be in use while the process exits.
Installed& installed() {
    static auto* const place = new Installed;
    return *place;
}

std::shared_ptr<DesktopPlatform> current() {
    const std::lock_guard lock(installed().mutex);
    return installed().desktop;
}

std::shared_ptr<DesktopPlatform> currentOrNew(const DesktopOptions& options) {
    const std::lock_guard lock(installed().mutex);
    if (!installed().desktop)
        installed().desktop = std::make_shared<DesktopPlatform>(options);
    return installed().desktop;
}

std::shared_ptr<DesktopPlatform> takeCurrent() {
    const std::lock_guard lock(installed().mutex);
    return std::exchange(installed().desktop, nullptr);
}

/// Returns the drive with a name in a list, or null.
template <typename Drive>
std::shared_ptr<Drive> driveNamed(const std::string& name, DriveList& drives) {
    for (const auto& drive : drives.devices())
        if (drive->displayName() == name)
            return std::dynamic_pointer_cast<Drive>(drive);
    return nullptr;
}

std::shared_ptr<OpticalDrive> opticalDriveNamed(const std::string& name) {
    const auto desktop = current();
    return desktop ? driveNamed<OpticalDrive>(name, desktop->opticalDrives()) : nullptr;
}

} // namespace

void installDesktopPlatform() { installDesktopPlatform({}); }

void installDesktopPlatform(const DesktopOptions& options) {
    installPlatform(currentOrNew(options)->services());
}

void uninstallDesktopPlatform() {
    const std::shared_ptr<DesktopPlatform> desktop = takeCurrent();
    if (!desktop)
        return;
    desktop->endBackgroundWork(); // first: background work uses the services
    installPlatform({});
}

std::optional<ImageProblem> findImageProblem(const std::string& path) {
    const std::optional<BurnFailure> problem = problemOfPlace(path);
    if (!problem)
        return std::nullopt;
    return ImageProblem{signedCode(problem->error()), problem->info()};
}

std::string addImageDrive(const ImageDriveOptions& options) {
    const auto desktop = current();
    if (!desktop || options.minutes < 0)
        return {};
    const auto drive =
        desktop->imageDrives().add({.path = options.path,
                                    .minutes = static_cast<unsigned>(options.minutes),
                                    .loadExisting = options.loadExisting});
    return drive ? drive->displayName() : std::string();
}

bool removeImageDrive(const std::string& displayName) {
    const auto desktop = current();
    if (!desktop)
        return false;
    ImageDrives& images = desktop->imageDrives();
    return images.remove(driveNamed<ImageDrive>(displayName, images));
}

bool insertBlankDisc(const std::string& displayName) {
    const auto desktop = current();
    const auto drive =
        desktop ? driveNamed<ImageDrive>(displayName, desktop->imageDrives()) : nullptr;
    return drive && drive->insertBlank();
}

std::string driveAccessProblem(const std::string& displayName) {
    const auto drive = opticalDriveNamed(displayName);
    return drive ? drive->accessProblem() : "";
}

std::string opticalDriveNode(const std::string& displayName) {
    const auto drive = opticalDriveNamed(displayName);
    return drive ? drive->record().node : "";
}

bool receivesDriveEvents() {
    const auto desktop = current();
    return desktop && desktop->opticalDrives().receivesEvents();
}

} // namespace quarner
