// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "adapters/scripted/ScriptedFiles.h"
#include "adapters/scripted/ScriptedStage.h"
#include "quarner/platform/RecordingService.h"
#include "quarner/scripted/ScriptedBurn.h"
#include "quarner/scripted/ScriptedDrive.h"

namespace quarner {

/// The recording service over scripted drives.
class ScriptedRecording : public RecordingService {
public:
    ScriptedRecording(std::shared_ptr<ScriptedStage> stage, std::shared_ptr<FileStore> files);

    std::vector<std::shared_ptr<DRDevice>> devices() override;
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override;
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override;
    std::shared_ptr<DRFile> fileWithPath(const std::string& path) override;
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override;
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override;

    void setDataEstimate(std::uint64_t blocks);

    std::shared_ptr<ScriptedDrive> attach(DriveScript script);
    /// False for a drive that is not attached.
    bool detach(const std::shared_ptr<ScriptedDrive>& drive);

    std::vector<std::shared_ptr<ScriptedBurn>> burns() const;
    /// Lets one of the burns that play send its next record. False when none plays.
    bool playNextRecord();
    bool isAnyPlaying() const;

private:
    std::optional<std::uint64_t> dataEstimate() const;

    const std::shared_ptr<ScriptedStage> _stage;
    const std::shared_ptr<FileStore> _files;
    mutable std::mutex _mutex;
    std::optional<std::uint64_t> _dataEstimate;
    std::vector<std::shared_ptr<ScriptedDrive>> _drives;
    std::vector<std::shared_ptr<ScriptedBurn>> _burns;
};

} // namespace quarner
