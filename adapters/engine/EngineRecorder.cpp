// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineRecorder.h"
#include "adapters/posix/FileStamps.h"

#include <utility>

namespace quarner {

EngineRecorder::EngineRecorder(std::shared_ptr<RunLoops> runLoops, std::shared_ptr<PCMService> pcm,
                               std::shared_ptr<DataDiscService> dataDiscs, Clock clock)
    : _runLoops(std::move(runLoops)), _services{_runLoops, std::move(pcm), std::move(dataDiscs),
                                                std::make_shared<BurnThreads>(), std::move(clock)} {
}

EngineRecorder::~EngineRecorder() { endBurns(); }

std::shared_ptr<DRBurn> EngineRecorder::burnForDevice(std::shared_ptr<DRDevice> device) {
    return std::make_shared<EngineBurn>(_services, std::dynamic_pointer_cast<BurnTarget>(device));
}

std::shared_ptr<DRTrack> EngineRecorder::trackForAudioFile(const std::string& path) {
    const std::optional<FileStamp> stamp = stampOfFile(path);
    const std::optional<PCMLength> length = stamp ? _services.pcm->measure(path) : std::nullopt;
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

void EngineRecorder::notify(const char* notification, std::shared_ptr<DRDevice> drive) const {
    _runLoops->postToAll({notification, std::move(drive), {}});
}

std::string uniqueDriveName(const std::string& wanted,
                            const std::function<bool(const std::string&)>& isTaken) {
    std::string candidate = wanted;
    for (int number = 2; isTaken(candidate); ++number)
        candidate = wanted + " (" + std::to_string(number) + ')';
    return candidate;
}

} // namespace quarner
