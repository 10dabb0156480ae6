// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "quarner/platform/MediaService.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// Measures and decodes through FFmpeg. A path always names a local file, whatever it looks like,
/// and no file leads to another: playlists and the like are not read. The lengths of the files
/// measured last are remembered for as long as the files stay as they were. What FFmpeg has to
/// say about a file goes to the platform's log.
std::shared_ptr<PCMService> makeFFmpegPCMService();

/// Play times as the PCM service measures them: `value` is the exact count of samples at the
/// file's own rate, `scale` that rate.
std::shared_ptr<MediaService> makeFFmpegMediaService(std::shared_ptr<PCMService> pcm);

} // namespace quarner
