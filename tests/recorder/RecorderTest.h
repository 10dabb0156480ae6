// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/recorder/BurnLog.h"
#include "tests/recorder/RecorderStage.h"

namespace quarner {

/// A recorder's name and how to set its stage.
struct RecorderChoice {
    std::string name;
    RecorderStageMaker makeStage;
};
inline void PrintTo(const RecorderChoice& choice, std::ostream* out) { *out << choice.name; }

/// What every recorder must do, whatever its drives are. Instantiated once for each recorder.
class Recorder : public testing::TestWithParam<RecorderChoice> {
protected:
    void TearDown() override { stage->loops().setInStep(false); }

    static constexpr std::uint32_t gap = 150;

    /// A track that plays a new file, after a pre-gap of two seconds.
    std::shared_ptr<DRTrack> makeTrack(std::uint64_t pairs) {
        std::shared_ptr<DRTrack> track = service()->trackForAudioFile(stage->makeSource(pairs));
        track->setPreGap(DRMSF::msfWithFrames(gap));
        return track;
    }
    DRLayout makeLayout(std::initializer_list<std::uint64_t> pairs) {
        DRLayout layout;
        for (const std::uint64_t count : pairs)
            layout.push_back(makeTrack(count));
        return layout;
    }

    std::shared_ptr<RecordingService> service() { return stage->service(); }
    std::shared_ptr<DRBurn> makeBurn() { return service()->burnForDevice(stage->drive()); }
    std::unique_ptr<BurnLog> observe(const std::shared_ptr<DRBurn>& burn) {
        return std::make_unique<BurnLog>(service()->currentRunLoopCenter(), burn.get());
    }
    bool runToEnd(const BurnLog& log) {
        return stage->loops().runUntil([&] { return log.isOver(); });
    }

    std::unique_ptr<RecorderStage> stage = GetParam().makeStage();
};

/// The recorders that the suite is for: one line for each.
std::vector<RecorderChoice> recorders();

/// Instantiates a part of the suite for every recorder, named after it.
#define INSTANTIATE_RECORDER_SUITE(Suite)                                                          \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(recorders()),                              \
                             [](const auto& tested) { return tested.param.name; })

} // namespace quarner
