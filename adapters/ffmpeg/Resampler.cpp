// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/Resampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace quarner {

namespace {

constexpr int mostChannels = 64; // the resampler's limit

using Samples = std::vector<std::int16_t>;

struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Frame = std::unique_ptr<AVFrame, FrameDeleter>;

Frame silentFrame(const AVCodecContext& decoder, std::uint32_t rate, int samples) {
    Frame frame(av_frame_alloc());
    if (!frame || av_channel_layout_copy(&frame->ch_layout, &decoder.ch_layout) < 0)
        return nullptr;
    const int channels = frame->ch_layout.nb_channels;
    if (channels <= 0 || channels > mostChannels)
        av_channel_layout_default(&frame->ch_layout, 2);
    frame->format =
        decoder.sample_fmt != AV_SAMPLE_FMT_NONE ? decoder.sample_fmt : AV_SAMPLE_FMT_FLTP;
    frame->sample_rate = static_cast<int>(rate);
    frame->nb_samples = samples;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    av_samples_set_silence(frame->extended_data, 0, samples, frame->ch_layout.nb_channels,
                           static_cast<AVSampleFormat>(frame->format));
    return frame;
}

/// The length of the resampler's default filter: 32 taps wide, cut off at 97 % of the lower band.
std::uint64_t filterLength(std::uint32_t rate) {
    const double factor = std::min(1.0, 0.97 * Resampler::discRate / rate);
    const auto taps = static_cast<std::uint64_t>(std::ceil(32 / factor));
    return std::max<std::uint64_t>(taps, 1);
}

} // namespace

/// An output sample needs input under all taps of the filter centred on it. At the end the
/// resampler appends a mirror image of half of its buffered input and outputs what that allows:
/// usually, but not always, every sample before the end of the input.
std::uint64_t resampledLength(std::uint64_t samples, std::uint32_t rate) {
    constexpr std::uint64_t discRate = Resampler::discRate;
    if (rate == discRate || rate == 0)
        return samples;
    const auto firstAt =
        [&](std::uint64_t position) { // the first output sample at or after position
            return static_cast<std::uint64_t>(
                av_rescale_rnd(static_cast<std::int64_t>(position), discRate, rate, AV_ROUND_UP));
        };
    const std::uint64_t taps = filterLength(rate);
    const std::uint64_t available = samples + (taps - 1) / 2;
    if (samples < taps)
        return firstAt(samples);
    const std::uint64_t unflushed = firstAt(available - taps + 1);
    const std::uint64_t consumed = unflushed * rate / discRate;
    const std::uint64_t held = available - std::min(available, consumed);
    const std::uint64_t mirrored = (std::min(held, taps) + 1) / 2;
    return firstAt(available + mirrored - taps + 1);
}

Resampler::~Resampler() {
    swr_free(&_context);
    av_channel_layout_uninit(&_channels);
}

bool Resampler::convert(const AVFrame& frame, SampleRange range, Samples& out) {
    if (!prepare(frame, out))
        return false;
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool isPlanar = av_sample_fmt_is_planar(format) != 0;
    const int channels = frame.ch_layout.nb_channels;
    const auto step = static_cast<std::size_t>(av_get_bytes_per_sample(format)) *
                      static_cast<std::size_t>(isPlanar ? 1 : channels);
    std::array<const std::uint8_t*, mostChannels> planes = {};
    for (int i = 0; i < (isPlanar ? channels : 1); ++i)
        planes[static_cast<std::size_t>(i)] = frame.extended_data[i] + range.first * step;
    return append(planes.data(), static_cast<int>(range.count), out);
}

bool Resampler::convertSilence(const AVCodecContext& decoder, std::uint32_t rate,
                               std::uint64_t samples, Samples& out) {
    const Frame frame = silentFrame(decoder, rate, static_cast<int>(samples));
    return frame && convert(*frame, {0, samples}, out);
}

bool Resampler::flush(Samples& out) {
    const bool isFlushed = _context == nullptr || append(nullptr, 0, out);
    swr_free(&_context);
    return isFlushed;
}

bool Resampler::prepare(const AVFrame& frame, Samples& out) {
    if (_context != nullptr && frame.format == _format && frame.sample_rate == _rate &&
        av_channel_layout_compare(&frame.ch_layout, &_channels) == 0)
        return true;
    if (frame.ch_layout.nb_channels > mostChannels || !flush(out) ||
        av_channel_layout_copy(&_channels, &frame.ch_layout) < 0)
        return false;
    _format = frame.format;
    _rate = frame.sample_rate;
    AVChannelLayout source = frame.ch_layout;
    if (source.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&source, source.nb_channels);
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    const bool isReady =
        swr_alloc_set_opts2(&_context, &stereo, AV_SAMPLE_FMT_S16, discRate, &source,
                            static_cast<AVSampleFormat>(_format), _rate, 0, nullptr) == 0 &&
        swr_init(_context) == 0;
    if (!isReady)
        swr_free(&_context);
    return isReady;
}

bool Resampler::append(const std::uint8_t** planes, int samples, Samples& out) {
    const int capacity = swr_get_out_samples(_context, samples);
    if (capacity < 0)
        return false;
    const std::size_t start = out.size();
    out.resize(start + 2 * static_cast<std::size_t>(capacity));
    auto* target = reinterpret_cast<std::uint8_t*>(out.data() + start);
    const int made = swr_convert(_context, &target, capacity, planes, samples);
    out.resize(start + 2 * static_cast<std::size_t>(std::max(made, 0)));
    return made >= 0;
}

} // namespace quarner
