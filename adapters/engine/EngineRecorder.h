// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/engine/EngineBurn.h"
#include "adapters/runloop/RunLoopCenter.h"
#include "quarner/platform/RecordingService.h"

namespace quarner {

/// What every recorder on the burn engine answers in the same way: all but its drives. Every
/// operation may be called on any thread.
class EngineRecorder : public RecordingService {
public:
    /// Cancels the burns that are under way and waits for their end. Not on a burn's thread.
    ~EngineRecorder() override;

    /// A burn on any drive that is a `BurnTarget`, whoever it belongs to.
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override;
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override;
    std::shared_ptr<DRFile> fileWithPath(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override;
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override;

protected:
    /// `dataDiscs` is null where no data discs are written.
    EngineRecorder(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<PCMService> pcm,
                   std::shared_ptr<DataDiscService> dataDiscs, Clock clock);

    /// Cancels the burns that are under way and waits for their end; none is started any more. For
    /// the destructor of a recorder that has something which its burns use. Not on a burn's thread.
    void endBurns() { _services.threads->shutDown(); }

    const std::shared_ptr<RunLoops>& runLoops() const { return _runLoops; }
    /// Sends a notification of a drive to everybody who listens.
    void tell(const char* notification, std::shared_ptr<DRDevice> drive) const;

private:
    const std::shared_ptr<RunLoops> _runLoops;
    const BurnServices _services;
};

/// A name for a new drive: the wanted one, or where that is taken, the first that is free of
/// "wanted (2)", "wanted (3)" and so on.
std::string uniqueDriveName(const std::string& wanted,
                            const std::function<bool(const std::string&)>& isTaken);

} // namespace quarner
