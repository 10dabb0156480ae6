// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/recorder/RecorderStage.h"
#include "tests/support/BurnLog.h"

namespace quarner {

/// A recorder's name and the maker of its stage.
struct RecorderChoice {
    std::string name;
    RecorderStageMaker makeStage;
};
inline void PrintTo(const RecorderChoice& choice, std::ostream* out) { *out << choice.name; }

/// The behaviour of every recorder. Instantiated once for each recorder.
class Recorder : public testing::TestWithParam<RecorderChoice> {
protected:
    void TearDown() override { stage->loops().setInStep(false); }

    /// Makes the layout of a disc with new files; `paths` then names the files.
    DRLayout makeLayout(std::initializer_list<std::uint64_t> pairs) {
        paths.clear();
        for (const std::uint64_t count : pairs)
            paths.push_back(stage->makeSource(count));
        return stage->layoutOf(paths);
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
    Paths paths;
};

/// The behaviour of every recorder that reads files from disk and writes sectors.
class WritingRecorder : public Recorder {
protected:
    WritingStage& writing = dynamic_cast<WritingStage&>(*stage);
};

/// The recorders that the suite tests: one line for each.
std::vector<RecorderChoice> recorders();
/// Those that read files from disk and write sectors, and of these those for audio discs.
std::vector<RecorderChoice> writingRecorders();
std::vector<RecorderChoice> audioWritingRecorders();

/// Instantiates a part of the suite for a choice of recorders, named after them.
#define INSTANTIATE_RECORDER_SUITE_FOR(choice, Suite)                                              \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(choice),                                   \
                             [](const auto& tested) { return tested.param.name; })
#define INSTANTIATE_RECORDER_SUITE(Suite) INSTANTIATE_RECORDER_SUITE_FOR(recorders(), Suite)
#define INSTANTIATE_WRITING_SUITE(Suite) INSTANTIATE_RECORDER_SUITE_FOR(writingRecorders(), Suite)

} // namespace quarner
