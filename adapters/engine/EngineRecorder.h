// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/engine/EngineBurn.h"
#include "adapters/runloop/RunLoops.h"
#include "quarner/platform/RecordingService.h"

namespace quarner {

/// The base of every recorder on the burn engine. A derived class adds only its drives. Every
/// operation may be called on any thread.
class EngineRecorder : public RecordingService {
public:
    /// Cancels the burns that are under way and waits for their end. Not on a burn's thread.
    ~EngineRecorder() override;

    /// Returns a burn on any drive that is a `BurnTarget`, also on another recorder's.
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override;
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override;
    std::shared_ptr<DRFile> fileWithPath(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override;
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override;

protected:
    /// `dataDiscs` is null if the recorder writes no data discs.
    EngineRecorder(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<PCMService> pcm,
                   std::shared_ptr<DataDiscService> dataDiscs, Clock clock);

    /// Cancels the running burns and waits for their end. No burn can be started afterwards. For
    /// the destructor of a recorder that owns something that its burns use. Not on a burn thread.
    void endBurns() { _services.threads->shutDown(); }

    const std::shared_ptr<RunLoops>& runLoops() const { return _runLoops; }
    /// Sends a notification about a drive to every run loop.
    void notify(const char* notification, std::shared_ptr<DRDevice> drive) const;

private:
    const std::shared_ptr<RunLoops> _runLoops;
    const BurnServices _services;
};

/// Returns a name for a new drive: `wanted` if it is free, otherwise the first free one of "wanted
/// (2)", "wanted (3)" and so on.
std::string uniqueDriveName(const std::string& wanted,
                            const std::function<bool(const std::string&)>& isTaken);

} // namespace quarner
