// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/RecordingService.h"

namespace quarner {

RecordingService::~RecordingService() = default;

std::shared_ptr<DRTrack>
RecordingService::trackForAudioFileWhile(const std::string& path,
                                         const MayContinue& /*mayContinue*/) {
    return trackForAudioFile(path);
}

std::shared_ptr<DRFile> RecordingService::fileWithPath(const std::string& /*path*/) {
    return nullptr;
}

std::shared_ptr<DRTrack>
// NOLINTNEXTLINE(performance-unnecessary-value-param): a service that knows data discs keeps it
RecordingService::trackForRootFolder(std::shared_ptr<const DRFolder> /*folder*/) {
    return nullptr;
}

} // namespace quarner
