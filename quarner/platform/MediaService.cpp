// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/MediaService.h"

namespace quarner {

QTMovie::~QTMovie() = default;

MediaService::~MediaService() = default;

bool MediaService::prepareMovie(const std::string& /*path*/, const MayContinue& /*mayContinue*/) {
    return true;
}

std::string MediaService::problemWithMovie(const std::string& path) {
    const std::unique_ptr<QTMovie> movie = movieWithFile(path);
    if (!movie)
        return "unreadable: no sound could be found in it";
    const QTTime time = movie->duration();
    return time.scale == 0 || time.value / time.scale <= 0 ? "shorter than a second" : "";
}

} // namespace quarner
