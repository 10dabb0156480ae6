// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "quarner/platform/MediaService.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// Measures and decodes with FFmpeg. A path always names a local file, and no file leads to another
/// one: playlists and the like are not read. The lengths of the files measured last are cached
/// until the files change. FFmpeg's messages about a file go to the platform's log.
std::shared_ptr<PCMService> makeFFmpegPCMService();

/// Returns play times as the PCM service measures them: `value` is the exact count of samples at
/// the file's own rate, `scale` that rate.
std::shared_ptr<MediaService> makeFFmpegMediaService(std::shared_ptr<PCMService> pcm);

} // namespace quarner
