// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/ImageDrive.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// A drive to be added.
struct ImageDriveSettings {
    /// The image: a path that ends in .cue for audio discs (see `ImageNames` for the BIN beside it)
    /// or in .iso for data discs. A relative one counts from the working directory of now.
    std::string path;
    /// 74 or 80: a blank disc of 333,000 or 359,847 blocks.
    unsigned minutes = 80;
    /// An image that is there, whoever made it, is in the drive as a written disc; where it cannot
    /// be told how many blocks it takes, they count as none. Otherwise, and without an image, the
    /// disc is blank; burning it replaces the image that is there.
    bool loadExisting = false;
};

/// What tests put in the place of the machine.
struct ImageRecorderParts {
    std::shared_ptr<FileSystem> files = posixFileSystem();
    Clock clock = std::chrono::steady_clock::now;
    std::shared_ptr<DataDiscService> dataDiscs = nullptr; ///< null: audio discs only
};

/// A recorder whose discs are files: BIN and CUE for audio, ISO for data. Every operation may be
/// called on any thread.
class ImageRecorder : public EngineRecorder {
public:
    ImageRecorder(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<PCMService> pcm,
                  ImageRecorderParts parts = {});
    /// Unplugs the drives: whoever still has one finds no disc in it.
    ~ImageRecorder() override;

    /// Attaches a drive, named after its image and unlike the other drives. Null when the path
    /// does not name a CUE or ISO file, or the minutes are none of the two.
    std::shared_ptr<ImageDrive> add(const ImageDriveSettings& settings);

    /// Unplugs a drive; answers whether it was attached. A burn that is under way on it fails.
    bool remove(const std::shared_ptr<DRDevice>& device);

    std::vector<std::shared_ptr<DRDevice>> devices() override;

private:
    std::string uniqueName(const std::string& path) const;

    const std::shared_ptr<FileSystem> _files;
    std::mutex _mutex;
    std::vector<std::shared_ptr<ImageDrive>> _drives;
};

} // namespace quarner
