// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

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

/// The image recorder with raw sound, in a folder of its own. The image is mix.cue.
class ImageStage : public RecorderStage {
public:
    explicit ImageStage(ImageRecorderParts parts = {})
        : _recorder(std::make_shared<ImageRecorder>(_loops, sound, std::move(parts))),
          _drive(_recorder->add({.path = cue()})) {}

    std::shared_ptr<RecordingService> service() override { return _recorder; }
    StepLoops& loops() override { return *_loops; }
    std::shared_ptr<DRDevice> drive() override { return _drive; }
    std::string makeSource(std::uint64_t pairs) override {
        ++_sources;
        return sources.write("source" + std::to_string(_sources), rawNoise(pairs, _sources));
    }
    std::string soundOf(const std::string& path) override { return contentOf(path); }
    std::vector<std::string> tracksOnDisc() override { return tracksOf(cue()); }
    void insertBlank() override { imageDrive()->insertBlank(); }
    void unplug() override { _recorder->remove(_drive); }
    void plugAnother() override { _recorder->add({.path = folder.file("another.cue")}); }
    void shutDown() override { _recorder.reset(); }

    std::shared_ptr<ImageRecorder> recorder() { return _recorder; }
    std::shared_ptr<ImageDrive> imageDrive() { return _drive; }
    std::string cue() const { return folder.file("mix.cue"); }
    std::string bin() const { return folder.file("mix.bin"); }

    /// The tracks of any image in the folder, read from its sheet.
    std::vector<std::string> tracksOf(const std::string& cuePath) const;

    TemporaryFolder folder;
    TemporaryFolder sources;
    std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();

private:
    std::shared_ptr<StepLoops> _loops = std::make_shared<StepLoops>();
    std::shared_ptr<ImageRecorder> _recorder;
    std::shared_ptr<ImageDrive> _drive;
    std::uint32_t _sources = 0;
};

inline std::vector<std::string> ImageStage::tracksOf(const std::string& cuePath) const {
    std::ifstream sheet(cuePath);
    std::string line;
    std::string bytes;
    std::vector<std::pair<std::size_t, std::size_t>> indexes; // (number, byte)
    while (std::getline(sheet, line)) {
        unsigned index = 0, minutes = 0, seconds = 0, frames = 0;
        if (line.starts_with("FILE \""))
            bytes = contentOf(folder.file(line.substr(6, line.rfind('"') - 6)));
        else if (std::sscanf(line.c_str(), " INDEX %u %u:%u:%u", &index, &minutes, &seconds,
                             &frames) == 4)
            indexes.emplace_back(index, ((minutes * 60 + seconds) * 75 + frames) * 2352ULL);
    }
    std::vector<std::string> tracks;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (indexes[i].first != 1)
            continue;
        const std::size_t end = i + 1 < indexes.size() ? indexes[i + 1].second : bytes.size();
        tracks.push_back(bytes.substr(indexes[i].second, end - indexes[i].second));
    }
    return tracks;
}

} // namespace quarner
