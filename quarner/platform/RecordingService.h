// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

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

    /// All drives that are attached now, in a stable order. Any thread.
    virtual std::vector<std::shared_ptr<DRDevice>> devices() = 0;

    /// A new burn on a drive; never null. A null drive gives a burn that fails with
    /// `DRError::DeviceVanished`.
    virtual std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) = 0;

    /// `trackForAudioFile:`: a new track that plays a file, its path, exact length and stamp
    /// filled in, the pre-gap zero; null when the file cannot be played. Any thread.
    virtual std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) = 0;

    /// `fileWithPath:`: a new file node for a file on disk. Null, or a thrown exception, when none
    /// can be made. Any thread. Answered here: null, for a service that writes no data discs.
    virtual std::shared_ptr<DRFile> fileWithPath(const std::string& path);

    /// `trackForRootFolder:`: a new data track of a folder's file system, with the blocks that it
    /// takes as its estimate. Returns null when none can be made, and in this class. Called on the
    /// host's main thread: an estimate that takes long is to be made later, see
    /// `DRTrack::setEstimateLength`.
    virtual std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder);

    /// `currentRunLoopCenter`: the notification centre of the run loop that is the calling
    /// thread's at this moment; within a handler, of the loop that called it. Every call with that
    /// loop gives the same object, which the service keeps for as long as the loop exists. Never
    /// null.
    virtual std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() = 0;
};

} // namespace quarner
