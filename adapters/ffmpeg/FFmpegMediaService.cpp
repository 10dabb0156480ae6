// SPDX-License-Identifier: LGPL-2.1-or-later
#include <utility>

#include "adapters/ffmpeg/ContainerSource.h"
#include "adapters/ffmpeg/FFmpegServices.h"

namespace quarner {

namespace {

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
        const auto length = _pcm->measure(path);
        return length ? std::make_unique<MeasuredMovie>(*length) : nullptr;
    }

    bool prepareMovie(const std::string& path, const MayContinue& mayContinue) override {
        return _pcm->measureWhile(path, mayContinue).has_value() || mayContinue();
    }

    std::vector<std::string> movieFileTypes(std::uint32_t) override {
        return audioFileExtensions();
    }

private:
    const std::shared_ptr<PCMService> _pcm;
};

} // namespace

std::shared_ptr<MediaService> makeFFmpegMediaService(std::shared_ptr<PCMService> pcm) {
    return std::make_shared<FFmpegMediaService>(std::move(pcm));
}

} // namespace quarner
