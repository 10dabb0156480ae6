// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/runloop/RunLoopCenter.h"
#include "quarner/platform/RecordingService.h"
#include "tests/recorder/StepLoops.h"

namespace quarner {

/// A recorder with one drive and a blank 80-minute disc in it, for the behavioural suite: what the
/// suite needs beyond the service's own interface.
class RecorderStage {
public:
    RecorderStage() = default;
    virtual ~RecorderStage() = default;
    RecorderStage(const RecorderStage&) = delete;
    RecorderStage& operator=(const RecorderStage&) = delete;

    virtual std::shared_ptr<RecordingService> service() = 0;
    virtual StepLoops& loops() = 0;
    virtual std::shared_ptr<DRDevice> drive() = 0;

    /// A new file that plays so many stereo samples.
    virtual std::string makeSource(std::uint64_t pairs) = 0;
    /// The sound of such a file as a disc holds it, without the silence at its end.
    virtual std::string soundOf(const std::string& path) = 0;
    /// What the disc in the drive plays, track by track, without the pre-gaps: the bytes of the
    /// sectors.
    virtual std::vector<std::string> tracksOnDisc() = 0;

    virtual void insertBlank() = 0;
    virtual void unplug() = 0;
    virtual void plugAnother() = 0;
    /// Drops the recorder, as the end of the process does.
    virtual void shutDown() = 0;
};

using RecorderStageMaker = std::function<std::unique_ptr<RecorderStage>()>;

} // namespace quarner
