// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/RecordingService.h"

namespace quarner {

/// Returns the track of a sound file, after two seconds of silence.
inline std::shared_ptr<DRTrack> audioTrack(RecordingService& service, const std::string& path) {
    auto track = service.trackForAudioFile(path);
    track->setPreGap(DRMSF::msfWithFrames(150));
    return track;
}

inline DRLayout audioLayout(RecordingService& service, const std::vector<std::string>& paths) {
    DRLayout layout;
    for (const std::string& path : paths)
        layout.push_back(audioTrack(service, path));
    return layout;
}

/// Returns the layout of a data disc with these files in its root folder.
inline DRLayout dataLayout(RecordingService& service, const std::vector<std::string>& paths) {
    const auto root = std::make_shared<DRFolder>("Disc");
    root->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
    for (const std::string& path : paths)
        root->addChild(service.fileWithPath(path));
    return {service.trackForRootFolder(root)};
}

} // namespace quarner
