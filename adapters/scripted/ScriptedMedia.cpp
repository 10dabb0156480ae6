// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedMedia.h"

#include <cmath>
#include <utility>

namespace quarner {
namespace {

class ScriptedMovie : public QTMovie {
public:
    explicit ScriptedMovie(QTTime duration) : _duration(duration) {}
    QTTime duration() const override { return _duration; }

private:
    const QTTime _duration;
};

QTTime timeOf(const MediaScript& media) {
    constexpr std::int64_t scale = 44100;
    const double ticks = std::round(media.seconds * static_cast<double>(scale));
    return media.time.value_or(QTTime{.value = static_cast<std::int64_t>(ticks), .scale = scale});
}

} // namespace

ScriptedMedia::ScriptedMedia(std::shared_ptr<ScriptedContext> context,
                             std::shared_ptr<FileStore> files)
    : _context(std::move(context)), _files(std::move(files)) {}

std::unique_ptr<QTMovie> ScriptedMedia::movieWithFile(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::MovieWithFile, path);
    const std::optional<MediaScript> media = _files->media(path);
    if (isFailing || !media || !media->isPlayable)
        return nullptr;
    return std::make_unique<ScriptedMovie>(timeOf(*media));
}

std::vector<std::string> ScriptedMedia::movieFileTypes(std::uint32_t /*flags*/) {
    if (_context->fails(ServiceCall::MovieFileTypes))
        return {};
    const std::lock_guard lock(_mutex);
    return _types;
}

std::optional<MovieProblem> ScriptedMedia::movieProblem(const std::string& path) {
    const std::optional<MediaScript> media = _files->media(path);
    return media && media->problem ? media->problem : MediaService::movieProblem(path);
}

MediaTags ScriptedMedia::tags(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::Tags, path);
    const std::optional<MediaScript> media = _files->media(path);
    return isFailing || !media ? MediaTags() : media->tags;
}

void ScriptedMedia::setMovieFileTypes(std::vector<std::string> types) {
    const std::lock_guard lock(_mutex);
    _types.swap(types);
}

} // namespace quarner
