// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRFile.h"
#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DRNotificationCenter.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {

/// The disc-recording service: drives, burns, tracks and their notifications.
class QUARNER_EXPORT RecordingService {
public:
    RecordingService() = default;
    virtual ~RecordingService();
    RecordingService(const RecordingService&) = delete;
    RecordingService& operator=(const RecordingService&) = delete;

    /// Returns all attached drives in a stable order. Any thread.
    virtual std::vector<std::shared_ptr<DRDevice>> devices() = 0;

    /// Returns a new burn on a drive; never null. For a null drive the burn fails with
    /// `DRError::DeviceVanished`.
    virtual std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) = 0;

    /// `trackForAudioFile:`: returns a new track that plays a file, with its path, exact length and
    /// stamp, and a pre-gap of zero. Returns null if the file cannot be played. Any thread.
    virtual std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) = 0;

    /// `fileWithPath:`: returns a new file node for a file on disk. Returns null, or throws an
    /// exception, if none can be made. Any thread. The default returns null, for a service that
    /// writes no data discs.
    virtual std::shared_ptr<DRFile> fileWithPath(const std::string& path);

    /// `trackForRootFolder:`: returns a new data track of a folder's file system, whose blocks are
    /// its estimate. Returns null if none can be made, as by default. Called on the host's main
    /// thread: an estimate that takes long is made later, see `DRTrack::setEstimateLength`.
    virtual std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder);

    /// `currentRunLoopCenter`: returns the notification centre of the calling thread's current run
    /// loop; within a handler, of the loop that called it. Every call within the same loop returns
    /// the same object, which the service keeps for as long as the loop exists. Never null.
    virtual std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() = 0;

    /// Asked often while a track is made, on the same thread; false ends the work.
    using MayContinue = std::function<bool()>;

    /// `trackForAudioFile`, but returns null soon after `mayContinue` has returned false. An empty
    /// function never ends it. A service that makes tracks at once need not override this.
    virtual std::shared_ptr<DRTrack> trackForAudioFileWhile(const std::string& path,
                                                            const MayContinue& mayContinue);
};

} // namespace quarner
