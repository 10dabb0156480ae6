// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstddef>
#include <map>
#include <mutex>
#include <utility>

#include "adapters/ffmpeg/ContainerSource.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/FileTags.h"
#include "adapters/ffmpeg/PathCache.h"

namespace quarner {

namespace {

using Length = std::optional<PCMLength>;

/// As many refused files as a host may have added at once and still asks about.
constexpr std::size_t mostProblems = 100'000;

class MeasuredMovie : public QTMovie {
public:
    explicit MeasuredMovie(const PCMLength& length) : _length(length) {}

    QTTime duration() const override {
        return {.value = static_cast<std::int64_t>(_length.sourceSamples),
                .scale = _length.sourceRate};
    }

private:
    const PCMLength _length;
};

class FFmpegMediaService : public MediaService {
public:
    explicit FFmpegMediaService(std::shared_ptr<PCMService> pcm) : _pcm(std::move(pcm)) {}

    std::unique_ptr<QTMovie> movieWithFile(const std::string& path) override {
        const auto prepared = takePrepared(path);
        const Length length = prepared ? *prepared : _pcm->measure(path);
        noteProblem(path, length);
        return length ? std::make_unique<MeasuredMovie>(*length) : nullptr;
    }

    bool prepareMovie(const std::string& path, const MayContinue& mayContinue) override {
        const Length length = _pcm->measureWhile(path, mayContinue);
        if (!length && !mayContinue())
            return false;
        const std::lock_guard lock(_mutex);
        _prepared.emplace(path, length);
        return true;
    }

    std::vector<std::string> movieFileTypes(std::uint32_t) override {
        return audioFileExtensions();
    }

    std::optional<MovieProblem> movieProblem(const std::string& path) override {
        return _problems.find(path).value_or(std::nullopt);
    }

    MediaTags tags(const std::string& path) override { return readTags(path); }

private:
    std::optional<Length> takePrepared(const std::string& path) {
        const std::lock_guard lock(_mutex);
        const auto found = _prepared.find(path);
        if (found == _prepared.end())
            return std::nullopt;
        const Length length = found->second;
        _prepared.erase(found);
        return length;
    }

    void noteProblem(const std::string& path, const Length& length) {
        const std::optional<MovieProblem> problem = problemOf(path, length);
        if (problem || _problems.find(path))
            _problems.keep(path, problem);
    }

    std::optional<MovieProblem> problemOf(const std::string& path, const Length& length) {
        using Kind = MovieProblem::Kind;
        if (length && length->sourceSamples >= length->sourceRate)
            return std::nullopt;
        if (length)
            return MovieProblem{Kind::TooShort, {}};
        const std::string cause = _pcm->problemWith(path);
        if (cause.empty())
            return MovieProblem{Kind::NoSound, "no sound could be found in it"};
        return MovieProblem{_pcm->isDamaged(path) ? Kind::Damaged : Kind::Unreadable, cause};
    }

    const std::shared_ptr<PCMService> _pcm;
    std::mutex _mutex;
    std::multimap<std::string, Length> _prepared; // several runs may prepare the same file
    PathCache<std::optional<MovieProblem>> _problems{mostProblems};
};

} // namespace

std::shared_ptr<MediaService> makeFFmpegMediaService(std::shared_ptr<PCMService> pcm) {
    return std::make_shared<FFmpegMediaService>(std::move(pcm));
}

} // namespace quarner
