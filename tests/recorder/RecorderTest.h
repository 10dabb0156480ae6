// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "tests/recorder/BurnLog.h"
#include "tests/recorder/RecorderStage.h"

namespace quarner {

/// What every recorder must do, whatever its drives are. Instantiated once for each recorder.
class Recorder : public testing::TestWithParam<RecorderStageMaker> {
protected:
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

    std::unique_ptr<RecorderStage> stage = GetParam()();
};

} // namespace quarner
