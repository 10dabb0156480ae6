// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImageDrives.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/Utf8.h"
#include "adapters/image/CueSheet.h"
#include "adapters/image/ImageNames.h"
#include "adapters/posix/FileStamps.h"
#include "adapters/posix/SystemCall.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

std::optional<std::uint32_t> blocksOf(unsigned minutes) {
    switch (minutes) {
    case 74:
        return 333'000;
    case 80:
        return 359'847;
    default:
        return std::nullopt;
    }
}

/// Returns whether there is a file at an image's path, as far as that is known.
bool isFileThere(const std::string& path) {
    struct stat found = {};
    const bool isFound = uninterrupted([&] { return stat(path.c_str(), &found); }) == 0;
    return isFound ? S_ISREG(found.st_mode) : errno != ENOENT;
}

/// Returns the blocks of the BIN that a CUE sheet refers to if it consists of whole audio sectors;
/// 0 if they are unknown.
std::uint64_t blocksOfImage(FileSystem& files, const CueNames& names) {
    const std::optional<std::string> sheet = files.content(names.cue);
    const std::optional<std::string> bin = sheet ? binNamedBy(*sheet) : std::nullopt;
    const std::optional<FileStamp> found =
        bin ? stampOfFile(names.folder + '/' + *bin) : std::nullopt;
    return found && found->size % audioSectorSize == 0 ? found->size / audioSectorSize : 0;
}

std::uint64_t blocksOfImage(const IsoNames& names) {
    const std::optional<FileStamp> found = stampOfFile(names.iso);
    return found ? (found->size + dataBlockSize - 1) / dataBlockSize : 0;
}

/// Returns the written disc for a file at an image's path, whoever wrote it and whatever it
/// contains.
ImageDrive::Disc existingDisc(FileSystem& files, const std::string& path) {
    try {
        if (const std::optional<CueNames> names = cueNames(path); names && isFileThere(names->cue))
            return {.isBlank = false, .usedBlocks = blocksOfImage(files, *names)};
        if (const std::optional<IsoNames> names = isoNames(path); names && isFileThere(names->iso))
            return {.isBlank = false, .usedBlocks = blocksOfImage(*names)};
    } catch (const BurnFailure&) {
        return {.isBlank = false}; // the sheet cannot be read
    }
    return {};
}

} // namespace

ImageDrives::ImageDrives(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<FileSystem> files)
    : DriveList(std::move(runLoops)), _files(std::move(files)) {}

ImageDrives::~ImageDrives() {
    for (const auto& drive : _drives)
        drive->unplug();
}

std::shared_ptr<ImageDrive> ImageDrives::add(const ImageDriveSettings& settings) {
    const std::optional<std::uint32_t> capacity = blocksOf(settings.minutes);
    if (!capacity || (!cueNames(settings.path) && !isoNames(settings.path)))
        return nullptr;
    const ImageDrive::Disc disc =
        settings.loadExisting ? existingDisc(*_files, settings.path) : ImageDrive::Disc{};
    std::error_code error;
    const std::string path = std::filesystem::absolute(settings.path, error).string();
    std::shared_ptr<ImageDrive> drive;
    {
        const std::lock_guard lock(_mutex);
        const std::string name = uniqueDriveName(readableName(CueNames::baseName(path)),
                                                 {_drives.begin(), _drives.end()});
        drive = std::make_shared<ImageDrive>(name, path, *capacity, disc, _files, runLoops());
        _drives.push_back(drive);
    }
    notify(DRDeviceAppearedNotification, drive);
    return drive;
}

bool ImageDrives::remove(const std::shared_ptr<DRDevice>& device) {
    std::shared_ptr<ImageDrive> drive;
    {
        const std::lock_guard lock(_mutex);
        const auto found = std::find(_drives.begin(), _drives.end(), device);
        if (found == _drives.end())
            return false;
        drive = *found;
        _drives.erase(found);
    }
    drive->unplug();
    notify(DRDeviceDisappearedNotification, drive);
    return true;
}

std::vector<std::shared_ptr<DRDevice>> ImageDrives::devices() {
    const std::lock_guard lock(_mutex);
    return {_drives.begin(), _drives.end()};
}

} // namespace quarner
