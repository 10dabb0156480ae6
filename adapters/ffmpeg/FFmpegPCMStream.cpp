// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FFmpegPCMStream.h"

#include <algorithm>
#include <utility>

#include "adapters/ffmpeg/FFmpegLog.h"

namespace quarner {

namespace {

constexpr std::uint64_t silenceAtOnce = 4096; // samples

} // namespace

FFmpegPCMStream::FFmpegPCMStream(std::string path, std::unique_ptr<AudioDecoder> decoder)
    : _path(std::move(path)), _decoder(std::move(decoder)) {}

std::optional<std::size_t> FFmpegPCMStream::read(std::span<std::int16_t> samples) try {
    const FFmpegLogScope scope(_path);
    std::size_t filled = take(samples);
    while (filled < samples.size() && !_isComplete) {
        if (!produce())
            return std::nullopt;
        filled += take(samples.subspan(filled));
    }
    return filled;
} catch (...) {
    return std::nullopt;
}

std::size_t FFmpegPCMStream::take(std::span<std::int16_t> samples) {
    const std::size_t count = std::min(samples.size(), _ready.size() - _taken);
    std::copy_n(_ready.begin() + static_cast<std::ptrdiff_t>(_taken), count, samples.begin());
    _taken += count;
    return count;
}

/// Makes more ready, all that was ready before being taken.
bool FFmpegPCMStream::produce() {
    _ready.clear();
    _taken = 0;
    const bool isProduced = _isDecoded ? finish() : _silence > 0 ? convertSilence() : convert();
    limitToPromise();
    _pairs += _ready.size() / 2;
    return isProduced;
}

bool FFmpegPCMStream::convert() {
    const AudioDecoder::Piece piece = _decoder->next();
    switch (piece.kind) {
    case AudioDecoder::Piece::Kind::sound:
        return _resampler.convert(*piece.frame, piece.range, _ready);
    case AudioDecoder::Piece::Kind::silence:
        _silence = piece.range.count;
        return true;
    case AudioDecoder::Piece::Kind::end:
        _isDecoded = true;
        return _resampler.flush(_ready);
    default:
        return false;
    }
}

bool FFmpegPCMStream::convertSilence() {
    const std::uint64_t samples = std::min(_silence, silenceAtOnce);
    _silence -= samples;
    return _resampler.convertSilence(_decoder->layout(), samples, _ready);
}

bool FFmpegPCMStream::finish() {
    const std::uint64_t promised = promisedPairs();
    const std::uint64_t missing = promised > _pairs ? promised - _pairs : 0;
    _ready.assign(2 * std::min(missing, silenceAtOnce), 0);
    _isComplete = missing <= silenceAtOnce;
    return true;
}

void FFmpegPCMStream::limitToPromise() {
    const std::uint64_t promised = promisedPairs();
    const std::uint64_t allowed = promised > _pairs ? promised - _pairs : 0;
    if (_ready.size() / 2 > allowed)
        _ready.resize(2 * allowed);
}

std::uint64_t FFmpegPCMStream::promisedPairs() const {
    return _decoder->knowsLength() ? resampledLength(_decoder->promisedSamples(), _decoder->rate())
                                   : _pairs + _ready.size() / 2;
}

} // namespace quarner
