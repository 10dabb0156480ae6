// SPDX-License-Identifier: LGPL-2.1-or-later
#include <array>
#include <string>

#include "adapters/ffmpeg/FFmpegLog.h"
#include "adapters/ffmpeg/FFmpegPCMStream.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/LengthCache.h"

namespace quarner {

namespace {

using Piece = AudioDecoder::Piece;

/// Whether one of the first pieces of the file is sound rather than damage.
bool startsToSound(AudioDecoder& decoder) {
    constexpr int patience = 32; // pieces
    for (int i = 0; i < patience; ++i) {
        const Piece::Kind kind = decoder.next().kind;
        if (kind != Piece::Kind::silence)
            return kind == Piece::Kind::sound;
    }
    return false;
}

/// For a file whose packets do not tell how long they are.
std::optional<PCMLength> measureByDecoding(const std::string& path) {
    auto decoder = AudioDecoder::open(path);
    if (!decoder)
        return std::nullopt;
    FFmpegPCMStream stream(path, std::move(decoder));
    std::array<std::int16_t, 8192> values = {};
    std::uint64_t pairs = 0;
    for (;;) {
        const auto count = stream.read(values);
        if (!count)
            return std::nullopt;
        pairs += *count / 2;
        if (*count < values.size())
            return PCMLength{pairs, Resampler::discRate, pairs};
    }
}

std::optional<PCMLength> measureByPackets(const std::string& path) {
    const auto decoder = AudioDecoder::open(path);
    if (!decoder || !startsToSound(*decoder) || !decoder->skipToEnd())
        return std::nullopt;
    if (!decoder->knowsLength())
        return measureByDecoding(path);
    const std::uint64_t samples = decoder->promisedSamples();
    return PCMLength{samples, decoder->rate(), resampledLength(samples, decoder->rate())};
}

class FFmpegPCMService : public PCMService {
public:
    std::optional<PCMLength> measure(const std::string& path) override;
    std::unique_ptr<PCMStream> open(const std::string& path) override;

private:
    LengthCache _lengths{512};
};

std::optional<PCMLength> FFmpegPCMService::measure(const std::string& path) try {
    const auto stamp = stampOfFile(path);
    if (!stamp)
        return std::nullopt;
    if (const auto known = _lengths.find(path, *stamp))
        return known;
    const FFmpegLogScope scope(path, FFmpegLogScope::Reports::Nowhere);
    const auto length = measureByPackets(path);
    if (length)
        _lengths.keep(path, *stamp, *length);
    return length;
} catch (...) {
    return std::nullopt;
}

std::unique_ptr<PCMStream> FFmpegPCMService::open(const std::string& path) try {
    if (!stampOfFile(path))
        return nullptr;
    const FFmpegLogScope scope(path);
    auto decoder = AudioDecoder::open(path);
    return decoder ? std::make_unique<FFmpegPCMStream>(path, std::move(decoder)) : nullptr;
} catch (...) {
    return nullptr;
}

} // namespace

std::shared_ptr<PCMService> makeFFmpegPCMService() { return std::make_shared<FFmpegPCMService>(); }

} // namespace quarner
