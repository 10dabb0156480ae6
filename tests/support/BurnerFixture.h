// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quarner/scripted.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/data/DataCDBurner.h"
#include "quarner/platform/DRTrack.h"
#include "tests/support/RecordingDelegate.h"

namespace quarner::testing {

/// An audio burner with its protected members made public.
class OpenAudioCDBurner : public AudioCDBurner {
public:
    using AudioCDBurner::_burner;
    using AudioCDBurner::_content;
    using AudioCDBurner::_estimateTotalLength;
    using AudioCDBurner::_supportedFiles;
    using AudioCDBurner::_textBlock;
};

/// A data burner with its protected members made public.
class OpenDataCDBurner : public DataCDBurner {
public:
    using DataCDBurner::_burner;
    using DataCDBurner::_content;
    using DataCDBurner::_estimateTotalLength;
    using DataCDBurner::_supportedFiles;
    using DataCDBurner::_textBlock;
};

/// A burner with a recording delegate on a scripted platform. This thread is the main thread.
template <typename Burner>
class BurnerTest : public ::testing::Test {
protected:
    static constexpr bool isAudio = !std::is_base_of_v<DataCDBurner, Burner>;

    BurnerTest() { burner->setDelegate(&delegate); }

    /// Turns the run loop until every run of `addFiles` has ended.
    void finishRuns() { ASSERT_TRUE(platform.runUntilIdle()); }

    /// Adds files and waits for the run. The calls so far are removed from the delegate.
    void compile(const std::vector<std::string>& paths) {
        burner->addFiles(paths);
        finishRuns();
        delegate.forget();
    }

    /// Puts songs of `seconds` seconds at these paths.
    void putSongs(const std::vector<std::string>& paths, double seconds = 10.0) {
        for (const std::string& path : paths)
            platform.putSong(path, {.seconds = seconds});
    }

    /// Returns an item of the burner's kind, with a name and without a file.
    static std::shared_ptr<BurnItem> makeItem(const std::string& name = "item") {
        std::shared_ptr<BurnItem> item;
        if constexpr (isAudio)
            item = trackOf(100, 150);
        else
            item = std::make_shared<DRFile>('/' + name + ".mp3");
        item->setProperties({{kQuarnItemDisplayNameKey, name}});
        return item;
    }

    /// Returns the report of a run without protected files and with these incompatible ones.
    static EndReport reportOf(const std::vector<std::string>& incompatible) {
        EndReport report = {{"incompatible-files", incompatible}};
        if constexpr (isAudio)
            report.emplace("protected-files", std::vector<std::string>());
        return report;
    }

    /// Returns a track without a file.
    static std::shared_ptr<DRTrack> trackOf(std::uint32_t frames, std::uint32_t preGapFrames) {
        auto track = std::make_shared<DRTrack>();
        track->setLength(DRMSF::msfWithFrames(frames));
        track->setPreGap(DRMSF::msfWithFrames(preGapFrames));
        return track;
    }

    std::uint64_t count() const { return burner->numberOfChildrenOfBurnItem(nullptr); }

    /// The paths of the items, in order.
    std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (std::uint64_t i = 0; i < count(); ++i)
            paths.push_back(
                *valueFor(*burner->child(i, nullptr)->properties(), kQuarnItemFilePathKey)
                     .asString());
        return paths;
    }

    RecordingDelegate delegate; // must outlive the runs, which end with the platform
    ScriptedPlatform platform;
    std::shared_ptr<Burner> burner = std::make_shared<Burner>();
};

/// Both burners and their names, for suites of common behaviour.
using Burners = ::testing::Types<OpenAudioCDBurner, OpenDataCDBurner>;
struct BurnerNames {
    template <typename Burner>
    static std::string GetName(int) {
        return std::is_base_of_v<DataCDBurner, Burner> ? "Data" : "Audio";
    }
};

using AudioBurnerTest = BurnerTest<OpenAudioCDBurner>;
using DataBurnerTest = BurnerTest<OpenDataCDBurner>;

} // namespace quarner::testing
