// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FFmpegPCMStream.h"

#include <algorithm>
#include <utility>

#include "adapters/ffmpeg/FFmpegLog.h"
#include "adapters/ffmpeg/WindowedFile.h"
#include "quarner/platform/Texts.h"

namespace quarner {

namespace {

constexpr std::uint64_t silenceAtOnce = 4096; // samples

} // namespace

FFmpegPCMStream::FFmpegPCMStream(std::string path, std::unique_ptr<WindowedFile> file,
                                 std::unique_ptr<AudioDecoder> decoder,
                                 std::optional<std::uint64_t> length)
    : _path(std::move(path)), _file(std::move(file)), _decoder(std::move(decoder)),
      _length(length) {}

FFmpegPCMStream::~FFmpegPCMStream() = default;

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

std::string FFmpegPCMStream::problem() const {
    if (_file->hasFailed())
        return _file->problem();
    return text("more than {size} MiB of damage in one place",
                {{"size", std::to_string(PacketSource::mostDamage >> 20)}});
}

bool FFmpegPCMStream::isDamaged() const { return !_file->hasFailed(); }

std::optional<FFmpegPCMStream::Source> FFmpegPCMStream::source() const {
    return _hasOneRate ? std::optional(_source) : std::nullopt;
}

std::size_t FFmpegPCMStream::take(std::span<std::int16_t> samples) {
    const std::size_t count = std::min(samples.size(), _ready.size() - _taken);
    std::copy_n(_ready.begin() + static_cast<std::ptrdiff_t>(_taken), count, samples.begin());
    _taken += count;
    return count;
}

/// Decodes more, after all that was decoded has been read.
bool FFmpegPCMStream::produce() {
    _ready.clear();
    _taken = 0;
    const bool isProduced = _isDecoded ? finish() : _silence > 0 ? convertSilence() : convert();
    if (_length && _ready.size() / 2 > missingPairs())
        _ready.resize(static_cast<std::size_t>(2 * missingPairs()));
    _pairs += _ready.size() / 2;
    if (_length && missingPairs() == 0)
        _isComplete = true;
    return isProduced;
}

bool FFmpegPCMStream::convert() {
    const AudioDecoder::Chunk chunk = _decoder->next();
    countSource(chunk);
    switch (chunk.kind) {
    case AudioDecoder::Chunk::Kind::sound:
        if (!_resampler.convert(*chunk.frame, rangeFor(chunk), _ready)) {
            _silence = chunk.range.count;
            _silenceRate = chunk.rate;
        }
        if (chunk.isJoin) // the part behind it then has the samples of any decoder, to the phase
            _resampler.flush(_ready);
        return true;
    case AudioDecoder::Chunk::Kind::silence:
        _silence = chunk.range.count;
        _silenceRate = chunk.rate;
        return true;
    case AudioDecoder::Chunk::Kind::end:
        _isDecoded = true;
        _resampler.flush(_ready);
        return true;
    default:
        return false;
    }
}

/// With a length the samples behind the end are dropped only after the resampler has seen them, so
/// that the last ones that are heard do not bend to an end that is none.
SampleRange FFmpegPCMStream::rangeFor(const AudioDecoder::Chunk& chunk) const {
    return {chunk.range.first, chunk.range.count + (_length ? chunk.tail : 0)};
}

void FFmpegPCMStream::countSource(const AudioDecoder::Chunk& chunk) {
    if (chunk.range.count == 0)
        return;
    _hasOneRate = _hasOneRate && (_source.rate == 0 || _source.rate == chunk.rate);
    _source.rate = chunk.rate;
    _source.samples += chunk.range.count;
}

bool FFmpegPCMStream::convertSilence() {
    const std::uint64_t samples = std::min(_silence, silenceAtOnce);
    _silence -= samples;
    if (!_resampler.convertSilence(_decoder->layout(), _silenceRate, samples, _ready)) {
        const std::uint64_t pairs = resampledLength(samples, _silenceRate); // no such format
        _ready.resize(_ready.size() + static_cast<std::size_t>(2 * pairs));
    }
    return true;
}

bool FFmpegPCMStream::finish() {
    const std::uint64_t missing = _length ? missingPairs() : 0;
    _ready.assign(static_cast<std::size_t>(2 * std::min(missing, silenceAtOnce)), 0);
    _isComplete = missing <= silenceAtOnce;
    return true;
}

std::uint64_t FFmpegPCMStream::missingPairs() const {
    return *_length - std::min(*_length, _pairs);
}

} // namespace quarner
