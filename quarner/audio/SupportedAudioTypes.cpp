// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/audio/SupportedAudioTypes.h"

#include <algorithm>
#include <array>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

/// Removes types that the media service opens but that hold no recorded sound. Only the first entry
/// of each is removed.
std::vector<std::string> withoutPlaylistsAndScores(std::vector<std::string> types) {
    static constexpr std::array unwanted = {"'Midi'", "mid", "midi", "pls", "m3u", "pdf"};
    for (const char* const type : unwanted) {
        const auto found = std::find(types.begin(), types.end(), type);
        if (found != types.end())
            types.erase(found);
    }
    return types;
}

} // namespace

std::vector<std::string> supportedAudioTypes() { return {"mp3", "MP3", "m4a", "M4A"}; }

std::vector<std::string> AudioCDBurner::supportedFileTypes() {
    constexpr std::uint32_t commonTypesOnly = 0;
    if (!_supportedFiles)
        _supportedFiles = std::make_unique<std::vector<std::string>>(
            withoutPlaylistsAndScores(currentPlatform()->media->movieFileTypes(commonTypesOnly)));
    return supportedAudioTypes();
}

} // namespace quarner
