// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/engine/DriveList.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/ImageDrive.h"

namespace quarner {

/// The settings of a new drive.
struct ImageDriveSettings {
    /// The path of the image. It ends in .cue for audio discs (see `CueNames` for the BIN beside
    /// it) or in .iso for data discs. A relative path is resolved against the current working
    /// directory when the drive is added.
    std::string path;
    /// 74 or 80: a blank disc of 333,000 or 359,847 blocks.
    unsigned minutes = 80;
    /// Whether an existing image, whoever made it, is in the drive as a written disc; its blocks
    /// count as 0 if their number is unknown. Otherwise, and without an image, the disc is blank,
    /// and a burn replaces the existing image.
    bool loadExisting = false;
};

/// The image drives that the host has added, in this order.
class ImageDrives final : public DriveList {
public:
    explicit ImageDrives(std::shared_ptr<RunLoops> runLoops,
                         std::shared_ptr<FileSystem> files = posixFileSystem());
    ~ImageDrives() override;

    /// Attaches a drive, with a unique name made from its image's. Returns null if the path is
    /// neither a CUE nor an ISO file, or if the minutes are neither 74 nor 80.
    std::shared_ptr<ImageDrive> add(const ImageDriveSettings& settings);

    /// Unplugs a drive. Returns whether it was attached. A burn that is under way on it fails.
    bool remove(const std::shared_ptr<DRDevice>& device);

    std::vector<std::shared_ptr<DRDevice>> devices() override;

private:
    const std::shared_ptr<FileSystem> _files;
    std::mutex _mutex;
    std::vector<std::shared_ptr<ImageDrive>> _drives;
};

} // namespace quarner
