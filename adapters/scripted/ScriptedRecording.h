// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "adapters/scripted/ScriptedBurnImpl.h"
#include "adapters/scripted/ScriptedContext.h"
#include "adapters/scripted/ScriptedDriveImpl.h"
#include "adapters/scripted/ScriptedFiles.h"
#include "quarner/platform/RecordingService.h"

namespace quarner {

/// The recording service on scripted drives.
class ScriptedRecording : public RecordingService {
public:
    ScriptedRecording(std::shared_ptr<ScriptedContext> context, std::shared_ptr<FileStore> files);

    std::vector<std::shared_ptr<DRDevice>> devices() override;
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override;
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override;
    std::shared_ptr<DRFile> fileWithPath(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override;
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override;

    void setDataEstimate(std::uint64_t blocks);

    std::shared_ptr<ScriptedDrive> attach(DriveScript script);
    /// Returns false if the drive is not attached.
    bool detach(const std::shared_ptr<ScriptedDrive>& drive);

    std::vector<std::shared_ptr<ScriptedBurnImpl>> burns() const;
    /// Makes one of the playing burns send its next record. Returns false if none is playing.
    bool playNextRecord();
    bool isAnyPlaying() const;

private:
    std::optional<std::uint64_t> dataEstimate() const;

    const std::shared_ptr<ScriptedContext> _context;
    const std::shared_ptr<FileStore> _files;
    mutable std::mutex _mutex;
    std::optional<std::uint64_t> _dataEstimate;
    std::vector<std::shared_ptr<ScriptedDriveImpl>> _drives;
    std::vector<std::shared_ptr<ScriptedBurnImpl>> _burns;
};

} // namespace quarner
