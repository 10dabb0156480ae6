// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "adapters/ffmpeg/Packet.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswresample/swresample.h>
}

namespace quarner {

/// Returns the number of samples at 44.1 kHz that the resampler makes, including the flush, from
/// `samples` samples at `rate`.
std::uint64_t resampledLength(std::uint64_t samples, std::uint32_t rate);

/// Converts decoded sound of any rate, layout and sample format to stereo pairs of 16 bits at
/// 44.1 kHz. The format may change between two calls.
class Resampler {
public:
    static constexpr std::uint32_t discRate = 44100;

    Resampler() = default;
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// Each call below appends pairs to `out`. Returns false if a conversion is impossible.
    bool convert(const AVFrame& frame, SampleRange range, std::vector<std::int16_t>& out);
    /// Silence at a rate, in the format of the decoder's last frame.
    bool convertSilence(const AVCodecContext& decoder, std::uint32_t rate, std::uint64_t samples,
                        std::vector<std::int16_t>& out);
    /// Appends the pairs that the resampler still buffers, and resets it.
    bool flush(std::vector<std::int16_t>& out);

private:
    bool prepare(const AVFrame& frame, std::vector<std::int16_t>& out);
    bool append(const std::uint8_t** planes, int samples, std::vector<std::int16_t>& out);

    SwrContext* _context = nullptr;
    int _format = AV_SAMPLE_FMT_NONE;
    int _rate = 0;
    AVChannelLayout _channels = {};
};

} // namespace quarner
