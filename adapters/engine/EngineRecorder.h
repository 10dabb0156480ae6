// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/engine/DriveList.h"
#include "adapters/engine/EngineBurn.h"
#include "quarner/platform/RecordingService.h"

namespace quarner {

/// The services that a recorder needs.
struct RecorderServices {
    std::shared_ptr<RunLoops> runLoops;
    std::shared_ptr<PCMService> pcm;
    std::shared_ptr<DataDiscService> dataDiscs = nullptr; ///< null if it writes audio discs only
    Clock clock = std::chrono::steady_clock::now;
};

/// The recorder of all drives that the engine burns on. Every operation may be called on any
/// thread.
class EngineRecorder final : public RecordingService {
public:
    EngineRecorder(RecorderServices services, DriveLists drives);
    /// Cancels the burns that are under way and waits for their end, before it releases the lists
    /// of drives. Not on a burn thread.
    ~EngineRecorder() override;

    /// Returns the drives of each list, in the order of the lists.
    std::vector<std::shared_ptr<DRDevice>> devices() override;
    /// Returns a burn on any drive that is a `BurnTarget`, also on one that is in none of the
    /// lists.
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override;
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForAudioFileWhile(const std::string& path,
                                                    const MayContinue& mayContinue) override;
    std::shared_ptr<DRFile> fileWithPath(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override;
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override;

private:
    const std::shared_ptr<RunLoops> _runLoops;
    const BurnServices _services;
    const DriveLists _drives;
};

} // namespace quarner
