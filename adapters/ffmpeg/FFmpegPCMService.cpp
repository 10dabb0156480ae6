// SPDX-License-Identifier: LGPL-2.1-or-later
#include <string>

#include "adapters/ffmpeg/FFmpegLog.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/LengthCache.h"
#include "adapters/ffmpeg/SoundFile.h"
#include "adapters/posix/FileStamps.h"
#include "adapters/posix/RegularFile.h"

namespace quarner {

namespace {

class FFmpegPCMService : public PCMService {
public:
    std::optional<PCMLength> measure(const std::string& path) override {
        return measureWhile(path, {});
    }
    std::optional<PCMLength> measureWhile(const std::string& path,
                                          const MayContinue& mayContinue) override;
    std::unique_ptr<PCMStream> open(const std::string& path) override;
    std::string problemWith(const std::string& path) override {
        return _problems.find(path).value_or(Problem()).text;
    }
    bool isDamaged(const std::string& path) override {
        return _problems.find(path).value_or(Problem()).isDamage;
    }

private:
    struct Problem {
        std::string text;
        bool isDamage = false;
    };

    LengthCache _lengths{512};
    PathCache<Problem> _problems{512};
};

std::optional<PCMLength> FFmpegPCMService::measureWhile(const std::string& path,
                                                        const MayContinue& mayContinue) try {
    const auto stamp = stampOfFile(path);
    if (!stamp) {
        _problems.keep(path, {.text = RegularFile(path).problem()});
        return std::nullopt;
    }
    if (const auto known = _lengths.find(path, *stamp))
        return *known;
    const FFmpegLogScope scope(path, FFmpegLogScope::Reports::Nowhere);
    const Measurement result = measureSound(path, mayContinue);
    if (!result.length)
        _problems.keep(path, {result.problem, result.isDamaged});
    const bool mayGoBetterNextTime = result.wasStopped || !result.problem.empty();
    if (!mayGoBetterNextTime)
        _lengths.keep(path, *stamp, result.length);
    return result.length;
} catch (...) {
    return std::nullopt;
}

std::unique_ptr<PCMStream> FFmpegPCMService::open(const std::string& path) try {
    const auto length = measure(path);
    if (!length)
        return nullptr;
    const FFmpegLogScope scope(path);
    std::string problem;
    auto stream = openSound(path, length->discSamples, {}, &problem);
    if (!stream)
        _problems.keep(path, {.text = problem});
    return stream;
} catch (...) {
    return nullptr;
}

} // namespace

std::shared_ptr<PCMService> makeFFmpegPCMService() { return std::make_shared<FFmpegPCMService>(); }

} // namespace quarner
