// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/image/ImageRecorder.h"
#include "tests/recorder/RawSound.h"
#include "tests/recorder/RecorderStage.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string content(file ? static_cast<std::size_t>(file.tellg()) : 0, '\0');
    file.seekg(0);
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

/// The image recorder in a folder of its own, with one drive for images of one kind.
class ImageStage : public RecorderStage {
public:
    std::shared_ptr<RecordingService> service() override { return _recorder; }
    StepLoops& loops() override { return *_loops; }
    std::shared_ptr<DRDevice> drive() override { return _drive; }
    std::string makeSource(std::uint64_t pairs) override {
        std::array<char, 32> name = {};
        std::snprintf(name.data(), name.size(), "source%04u", ++_sources);
        return sources.write(name.data(), rawNoise(pairs, _sources));
    }
    void insertBlank() override { imageDrive()->insertBlank(); }
    void unplug() override { _recorder->remove(_drive); }
    void plugAnother() override { _recorder->add({.path = imageNamed("another")}); }
    void shutDown() override { _recorder.reset(); }
    std::vector<std::string> contentsOnDisc() override { return contentsOf(image()); }

    std::shared_ptr<ImageRecorder> recorder() { return _recorder; }
    std::shared_ptr<ImageDrive> imageDrive() { return _drive; }

    /// A recorder of the same kind on another file system; the parts' own kind is put in.
    std::shared_ptr<ImageRecorder> makeRecorder(std::shared_ptr<RunLoops> loops,
                                                ImageRecorderParts parts = {}) {
        parts.dataDiscs = _dataDiscs;
        return std::make_shared<ImageRecorder>(std::move(loops), sound, std::move(parts));
    }
    /// The same disc through another recorder of the same kind.
    virtual DRLayout layoutThrough(RecordingService& recorder, const Paths& paths) = 0;
    DRLayout layoutOf(const Paths& paths) override { return layoutThrough(*_recorder, paths); }

    /// The image of the stage's drive.
    std::string image() const { return imageNamed("mix"); }
    std::string imageNamed(const std::string& name) const { return folder.file(name + _extension); }
    /// What any image in the folder holds, source by source.
    virtual std::vector<std::string> contentsOf(const std::string& imagePath) const = 0;
    /// The names of the files that an image called mix consists of, in order.
    virtual std::vector<std::string> filesOfImage() const = 0;
    /// The end of the name of the file that the sectors are written to first.
    virtual std::string partEnding() const = 0;
    virtual std::uint64_t blockSize() const = 0;

    /// Calls a function on the reading thread, again and again, while a source is being read: when
    /// some of it was read, and not all. The source is more than half of the disc.
    virtual void whileReading(const std::string& path, std::function<void()> function) = 0;
    /// Calls a function on the reading thread before anything is read.
    virtual void beforeReading(std::function<void()> function) = 0;

    TemporaryFolder folder;
    TemporaryFolder sources;
    std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();

protected:
    ImageStage(std::string extension, ImageRecorderParts parts)
        : _extension(std::move(extension)), _dataDiscs(parts.dataDiscs),
          _recorder(std::make_shared<ImageRecorder>(_loops, sound, std::move(parts))),
          _drive(_recorder->add({.path = image()})) {}

private:
    const std::string _extension;
    const std::shared_ptr<DataDiscService> _dataDiscs;
    std::shared_ptr<StepLoops> _loops = std::make_shared<StepLoops>();
    std::shared_ptr<ImageRecorder> _recorder;
    std::shared_ptr<ImageDrive> _drive;
    std::uint32_t _sources = 0;
};

} // namespace quarner
