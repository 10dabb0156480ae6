// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/recorder/BurnLog.h"
#include "tests/recorder/ImageStage.h"

namespace quarner {

/// Burns to mix.cue in a folder of the test's own.
class ImageTest : public testing::Test {
protected:
    /// How a burn ended.
    struct Outcome {
        bool isDone;
        std::uint32_t code;
        std::string info;
        std::vector<std::string> states;
    };

    /// Puts another machine under the recorder. Before anything else.
    void useParts(ImageRecorderParts parts) {
        stage = std::make_unique<ImageStage>(std::move(parts));
    }

    std::shared_ptr<DRTrack> makeTrack(std::uint64_t pairs) {
        std::shared_ptr<DRTrack> track =
            stage->service()->trackForAudioFile(stage->makeSource(pairs));
        track->setPreGap(DRMSF::msfWithFrames(150));
        return track;
    }
    DRLayout makeLayout(std::initializer_list<std::uint64_t> pairs) {
        DRLayout layout;
        for (const std::uint64_t count : pairs)
            layout.push_back(makeTrack(count));
        return layout;
    }

    Outcome burn(const DRLayout& layout) { return burn(layout, stage->drive()); }
    Outcome burn(const DRLayout& layout, const std::shared_ptr<DRDevice>& drive,
                 const std::function<void(const Dictionary&)>& onRecord = {}) {
        const auto burn = stage->service()->burnForDevice(drive);
        BurnLog log(stage->service()->currentRunLoopCenter(), burn.get());
        log.onRecord = onRecord;
        burn->writeLayout(layout);
        EXPECT_TRUE(stage->loops().runUntil([&] { return log.isOver(); }));
        return {log.isDone(), log.code(), log.info(), log.states()};
    }

    void takeNewBlank() {
        stage->drive()->ejectMedia();
        stage->insertBlank();
    }

    /// The names in the image's folder, hidden ones included, in order.
    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(stage->folder.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    /// What a layout makes of the disc: each track's sound, filled up to its sectors.
    std::vector<std::string> tracksOf(const DRLayout& layout) const {
        std::vector<std::string> tracks;
        for (const auto& track : layout) {
            tracks.push_back(contentOf(track->path));
            tracks.back().resize(std::size_t(track->length().totalFrames()) * 2352, '\0');
        }
        return tracks;
    }

    std::unique_ptr<ImageStage> stage = std::make_unique<ImageStage>();
};

} // namespace quarner
