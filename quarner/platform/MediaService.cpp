// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/MediaService.h"

namespace quarner {

QTMovie::~QTMovie() = default;

MediaService::~MediaService() = default;

bool MediaService::prepareMovie(const std::string& /*path*/, const MayContinue& /*mayContinue*/) {
    return true;
}

std::optional<MovieProblem> MediaService::movieProblem(const std::string& path) {
    const std::unique_ptr<QTMovie> movie = movieWithFile(path);
    if (!movie)
        return MovieProblem{MovieProblem::Kind::NoSound, "no sound could be found in it"};
    const QTTime time = movie->duration();
    if (time.scale == 0 || time.value / time.scale <= 0)
        return MovieProblem{MovieProblem::Kind::TooShort, {}};
    return std::nullopt;
}

std::string MediaService::problemWithMovie(const std::string& path) {
    const std::optional<MovieProblem> problem = movieProblem(path);
    if (!problem)
        return {};
    if (problem->kind == MovieProblem::Kind::TooShort)
        return "shorter than a second";
    return problem->detail.empty() ? "unreadable" : "unreadable: " + problem->detail;
}

MediaTags MediaService::tags(const std::string& /*path*/) { return {}; }

} // namespace quarner
