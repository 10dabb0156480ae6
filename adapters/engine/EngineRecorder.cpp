// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineRecorder.h"

#include <utility>

#include "adapters/posix/FileStamps.h"

namespace quarner {

EngineRecorder::EngineRecorder(RecorderServices services, DriveLists drives)
    : _runLoops(std::move(services.runLoops)), _services{_runLoops, std::move(services.pcm),
                                                         std::move(services.dataDiscs),
                                                         std::make_shared<BurnThreads>(),
                                                         std::move(services.clock)},
      _drives(std::move(drives)) {}

EngineRecorder::~EngineRecorder() { _services.threads->shutDown(); }

std::vector<std::shared_ptr<DRDevice>> EngineRecorder::devices() {
    std::vector<std::shared_ptr<DRDevice>> all;
    for (const auto& list : _drives) {
        const std::vector<std::shared_ptr<DRDevice>> drives = list->devices();
        all.insert(all.end(), drives.begin(), drives.end());
    }
    return all;
}

std::shared_ptr<DRBurn> EngineRecorder::burnForDevice(std::shared_ptr<DRDevice> device) {
    return std::make_shared<EngineBurn>(_services, std::dynamic_pointer_cast<BurnTarget>(device));
}

std::shared_ptr<DRTrack> EngineRecorder::trackForAudioFile(const std::string& path) {
    return trackForAudioFileWhile(path, {});
}

std::shared_ptr<DRTrack> EngineRecorder::trackForAudioFileWhile(const std::string& path,
                                                                const MayContinue& mayContinue) {
    const std::optional<FileStamp> stamp = stampOfFile(path);
    const std::optional<PCMLength> length =
        stamp ? _services.pcm->measureWhile(path, mayContinue) : std::nullopt;
    if (!length || length->discSamples == 0)
        return nullptr;
    auto track = std::make_shared<DRTrack>();
    track->path = path;
    track->sampleCount = length->discSamples;
    track->stamp = *stamp;
    track->setLength(DRMSF::msfWithFrames(sectorsForSamples(length->discSamples)));
    return track;
}

std::shared_ptr<DRFile> EngineRecorder::fileWithPath(const std::string& path) {
    const std::optional<FileStamp> stamp = stampOfFile(path);
    return stamp ? std::make_shared<DRFile>(path, *stamp) : nullptr;
}

std::shared_ptr<DRTrack>
EngineRecorder::trackForRootFolder(std::shared_ptr<const DRFolder> folder) {
    return _services.dataDiscs ? _services.dataDiscs->trackForRootFolder(std::move(folder))
                               : nullptr;
}

std::shared_ptr<DRNotificationCenter> EngineRecorder::currentRunLoopCenter() {
    return _runLoops->currentCenter();
}

} // namespace quarner
