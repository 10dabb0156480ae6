// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/CueStage.h"
#include "tests/recorder/IsoStage.h"
#include "tests/support/BurnLog.h"

namespace quarner {

/// A kind of image that the recorder writes.
struct ImageFormat {
    const char* name;
    std::function<std::unique_ptr<ImageStage>(std::shared_ptr<FileSystem>)> makeStage;

    friend void PrintTo(const ImageFormat& format, std::ostream* out) { *out << format.name; }
};

inline ImageFormat cueFormat() {
    return {"Cue", [](std::shared_ptr<FileSystem> files) {
                return std::make_unique<CueStage>(std::move(files));
            }};
}
inline ImageFormat isoFormat() {
    return {"Iso", [](std::shared_ptr<FileSystem> files) {
                return std::make_unique<IsoStage>(std::move(files));
            }};
}

/// Burns to an image called mix in a folder of its own.
class ImageTest : public testing::Test {
protected:
    explicit ImageTest(ImageFormat format) : _format(std::move(format)) {}

    /// The result of a burn.
    struct Outcome {
        bool isDone;
        std::uint32_t code;
        std::string info;
        std::vector<std::string> states;
    };

    /// Replaces the stage by one with these files. Call it first.
    void useFiles(std::shared_ptr<FileSystem> files) {
        stage = _format.makeStage(std::move(files));
    }

    Paths makeSources(std::initializer_list<std::uint64_t> pairs) {
        Paths paths;
        for (const std::uint64_t count : pairs)
            paths.push_back(stage->makeSource(count));
        return paths;
    }
    DRLayout makeLayout(std::initializer_list<std::uint64_t> pairs) {
        return stage->layoutOf(makeSources(pairs));
    }

    Outcome burn(const Paths& paths) { return burn(stage->layoutOf(paths)); }
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

    /// Burns to the stage's image through other files.
    Outcome burnThrough(const std::shared_ptr<FileSystem>& files, const Paths& paths) {
        ImageDrives drives = stage->makeDrives(files);
        return burn(stage->layoutOf(paths), drives.add({.path = stage->image()}));
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

    /// Returns whether the image contains these sources and nothing else.
    bool imageHolds(const Paths& paths) const {
        return stage->contentsOnDisc() == stage->expectedContentsOf(paths);
    }

private:
    const ImageFormat _format;

protected:
    std::unique_ptr<ImageStage> stage = _format.makeStage(posixFileSystem());
};

/// For the common behaviour of all kinds of images.
class AnyImageTest : public ImageTest, public testing::WithParamInterface<ImageFormat> {
protected:
    AnyImageTest() : ImageTest(GetParam()) {}
};

/// Instantiates tests for every kind of image, named after it.
#define INSTANTIATE_IMAGE_SUITE(Suite)                                                             \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::Values(cueFormat(), isoFormat()),                   \
                             [](const auto& tested) { return tested.param.name; })

/// For audio images only.
class CueTest : public ImageTest {
protected:
    CueTest() : ImageTest(cueFormat()) {}

    std::string cue() const { return stage->image(); }
    std::string bin() const { return stage->folder.file("mix.bin"); }

    std::shared_ptr<DRTrack> makeTrack(std::uint64_t pairs) {
        std::shared_ptr<DRTrack> track =
            stage->service()->trackForAudioFile(stage->makeSource(pairs));
        track->setPreGap(DRMSF::msfWithFrames(150));
        return track;
    }

    /// Returns the tracks of a layout: each track's sound, padded to its sectors.
    std::vector<std::string> tracksOf(const DRLayout& layout) const {
        std::vector<std::string> tracks;
        for (const auto& track : layout) {
            tracks.push_back(contentOf(track->path));
            tracks.back().resize(std::size_t(track->length().totalFrames()) * audioSectorSize,
                                 '\0');
        }
        return tracks;
    }
};

} // namespace quarner
