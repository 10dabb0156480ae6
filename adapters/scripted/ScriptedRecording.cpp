// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedRecording.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

/// Returns the size of the files alone, in whole blocks.
std::uint64_t blocksOf(const DRFolder& folder) {
    std::uint64_t blocks = 0;
    for (const auto& node : folder.children())
        blocks += (node->stamp().size + dataBlockSize - 1) / dataBlockSize;
    return blocks;
}

} // namespace

ScriptedRecording::ScriptedRecording(std::shared_ptr<ScriptedContext> context,
                                     std::shared_ptr<FileStore> files)
    : _context(std::move(context)), _files(std::move(files)) {}

std::vector<std::shared_ptr<DRDevice>> ScriptedRecording::devices() {
    if (_context->fails(ServiceCall::Devices))
        return {};
    const std::lock_guard lock(_mutex);
    return {_drives.begin(), _drives.end()};
}

std::shared_ptr<DRBurn> ScriptedRecording::burnForDevice(std::shared_ptr<DRDevice> device) {
    const std::string name = device ? device->displayName() : std::string();
    if (_context->fails(ServiceCall::BurnForDevice, name))
        device.reset();
    const auto burn = std::make_shared<ScriptedBurnImpl>(_context, std::move(device));
    const std::lock_guard lock(_mutex);
    _burns.push_back(burn);
    return burn;
}

std::shared_ptr<DRTrack> ScriptedRecording::trackForAudioFile(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::TrackForAudioFile, path);
    const std::optional<MediaScript> media = _files->media(path);
    if (isFailing || !media || !media->makesTrack)
        return nullptr;
    auto track = std::make_shared<DRTrack>();
    track->path = path;
    track->sampleCount = samplesOf(*media);
    const std::int64_t size = _files->file(path).value_or(FileScript{}).size;
    track->stamp.size = static_cast<std::uint64_t>(std::max<std::int64_t>(size, 0));
    track->setLength(
        DRMSF::msfWithFrames(media->frames.value_or(sectorsForSamples(track->sampleCount))));
    if (media->estimateLength)
        track->setEstimateLength(*media->estimateLength);
    track->setProperties(media->trackProperties);
    return track;
}

std::shared_ptr<DRFile> ScriptedRecording::fileWithPath(const std::string& path) {
    const std::optional<FileScript> file = _files->file(path);
    if (_context->fails(ServiceCall::FileWithPath, path) || !file || !file->makesNode)
        return nullptr;
    if (file->nodeThrows)
        throw std::runtime_error(path + ": no node can be made of it");
    const auto size = static_cast<std::uint64_t>(std::max<std::int64_t>(file->size, 0));
    auto node = std::make_shared<DRFile>(path, FileStamp{.size = size});
    node->setProperties(file->nodeProperties);
    return node;
}

std::shared_ptr<DRTrack>
ScriptedRecording::trackForRootFolder(std::shared_ptr<const DRFolder> folder) {
    if (_context->fails(ServiceCall::TrackForRootFolder, folder->name()))
        return nullptr;
    auto track = std::make_shared<DRTrack>();
    track->setEstimateLength(dataEstimate().value_or(blocksOf(*folder)));
    track->rootFolder = std::move(folder);
    return track;
}

void ScriptedRecording::setDataEstimate(std::uint64_t blocks) {
    const std::lock_guard lock(_mutex);
    _dataEstimate = blocks;
}

std::optional<std::uint64_t> ScriptedRecording::dataEstimate() const {
    const std::lock_guard lock(_mutex);
    return _dataEstimate;
}

std::shared_ptr<DRNotificationCenter> ScriptedRecording::currentRunLoopCenter() {
    return _context->loops.currentCenter();
}

std::shared_ptr<ScriptedDrive> ScriptedRecording::attach(DriveScript script) {
    auto drive = std::make_shared<ScriptedDriveImpl>(_context, std::move(script));
    const std::lock_guard lock(_mutex);
    _drives.push_back(drive);
    return drive;
}

bool ScriptedRecording::detach(const std::shared_ptr<ScriptedDrive>& drive) {
    const auto attached = std::dynamic_pointer_cast<ScriptedDriveImpl>(drive);
    {
        const std::lock_guard lock(_mutex);
        if (std::erase(_drives, attached) == 0)
            return false;
    }
    attached->setDetached();
    for (const auto& burn : burns())
        if (burn->device() == drive)
            burn->failScript(DRError::DeviceVanished);
    return true;
}

std::vector<std::shared_ptr<ScriptedBurnImpl>> ScriptedRecording::burns() const {
    const std::lock_guard lock(_mutex);
    return _burns;
}

bool ScriptedRecording::playNextRecord() {
    const auto all = burns();
    return std::any_of(all.begin(), all.end(),
                       [](const auto& burn) { return burn->playNextRecord(); });
}

bool ScriptedRecording::isAnyPlaying() const {
    const auto all = burns();
    return std::any_of(all.begin(), all.end(), [](const auto& burn) { return burn->isPlaying(); });
}

} // namespace quarner
