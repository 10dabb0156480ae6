// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <utility>

#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/AudioStage.h"
#include "tests/recorder/ImageStage.h"

namespace quarner {

/// Audio discs of raw sound. The image is mix.cue.
class CueStage : public AudioStage<ImageStage> {
public:
    explicit CueStage(std::shared_ptr<FileSystem> files = posixFileSystem())
        : AudioStage(".cue", std::move(files)) {}

    std::uint64_t blocksOnDisc() override {
        return std::filesystem::file_size(bin()) / blockSize();
    }
    std::vector<std::string> contentsOf(const std::string& cuePath) const override;
    std::vector<std::string> filesOfImage() const override { return {"mix.bin", "mix.cue"}; }
    std::string partEnding() const override { return ".bin.part"; }
    std::uint64_t blockSize() const override { return audioSectorSize; }

    void whileReading(const std::string& path, std::function<void()> function) override {
        sound->setReadHook([=](const std::string& read, std::uint64_t pairs) {
            if (read == path && pairs > 0)
                function();
        });
    }
    void beforeReading(std::function<void()> function) override {
        sound->setReadHook([=](const std::string&, std::uint64_t) { function(); });
    }

    std::string cue() const { return image(); }
    std::string bin() const { return folder.file("mix.bin"); }
};

/// Read from the sheet.
inline std::vector<std::string> CueStage::contentsOf(const std::string& cuePath) const {
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
