// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/MediaService.h"

namespace quarner {

QTMovie::~QTMovie() = default;

MediaService::~MediaService() = default;

bool MediaService::prepareMovie(const std::string& /*path*/, const MayContinue& /*mayContinue*/) {
    return true;
}

} // namespace quarner
