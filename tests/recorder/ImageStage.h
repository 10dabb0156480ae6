// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/image/ImageDrives.h"
#include "tests/recorder/SourceStage.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {

/// A recorder of image drives in its own folder, with one drive for images of one kind.
class ImageStage : public SourceStage {
public:
    std::shared_ptr<RecordingService> service() override { return _recorder; }
    std::shared_ptr<DRDevice> drive() override { return _drive; }
    void insertBlank() override { imageDrive()->insertBlank(); }
    void unplug() override { _drives->remove(_drive); }
    void plugAnother() override { _drives->add({.path = imageNamed("another")}); }
    bool sparesDiscs() const override { return true; }
    void shutDown() override {
        _drives.reset();
        _recorder.reset();
    }
    std::vector<std::string> contentsOnDisc() override { return contentsOf(image()); }

    ImageDrives& drives() { return *_drives; }
    std::shared_ptr<ImageDrive> imageDrive() { return _drive; }
    /// Drives that reach their images through other files.
    ImageDrives makeDrives(std::shared_ptr<FileSystem> files) const {
        return ImageDrives(sharedLoops(), std::move(files));
    }

    /// The image of the stage's drive.
    std::string image() const { return imageNamed("mix"); }
    std::string imageNamed(const std::string& name) const { return folder.file(name + _extension); }
    /// The content of any image in the folder, source by source.
    virtual std::vector<std::string> contentsOf(const std::string& imagePath) const = 0;
    /// The names of the files of an image called mix, in order.
    virtual std::vector<std::string> filesOfImage() const = 0;
    /// The suffix of the file that the sectors are first written to.
    virtual std::string partEnding() const = 0;
    virtual std::uint64_t blockSize() const = 0;

    /// Calls a function on the reading thread repeatedly while a source is read: after its first
    /// and before its last bytes. The source is more than half of the disc.
    virtual void whileReading(const std::string& path, std::function<void()> function) = 0;
    /// Calls a function on the reading thread before anything is read.
    virtual void beforeReading(std::function<void()> function) = 0;

    TemporaryFolder folder;

protected:
    ImageStage(std::string extension, std::shared_ptr<FileSystem> files,
               std::shared_ptr<DataDiscService> dataDiscs = nullptr)
        : _extension(std::move(extension)),
          _drives(std::make_shared<ImageDrives>(sharedLoops(), std::move(files))),
          _recorder(std::make_shared<EngineRecorder>(
              RecorderServices{sharedLoops(), sound, std::move(dataDiscs)}, DriveLists{_drives})),
          _drive(_drives->add({.path = image()})) {}

private:
    const std::string _extension;
    std::shared_ptr<ImageDrives> _drives;
    std::shared_ptr<EngineRecorder> _recorder;
    std::shared_ptr<ImageDrive> _drive;
};

} // namespace quarner
