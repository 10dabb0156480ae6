// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/ffmpeg/AudioDecoder.h"
#include "adapters/ffmpeg/Resampler.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// One file as a CD holds it. It delivers exactly the resampled length of what the file's packets
/// promise: what a decoder gives beyond that is dropped, what is missing at the end is silence.
class FFmpegPCMStream : public PCMStream {
public:
    FFmpegPCMStream(std::string path, std::unique_ptr<AudioDecoder> decoder);

    std::optional<std::size_t> read(std::span<std::int16_t> samples) override;

private:
    std::size_t take(std::span<std::int16_t> samples);
    bool produce();
    bool convert();
    bool convertSilence();
    bool finish();
    void limitToPromise();
    std::uint64_t promisedPairs() const;

    const std::string _path;
    std::unique_ptr<AudioDecoder> _decoder;
    Resampler _resampler;
    std::vector<std::int16_t> _ready; // decoded, not yet taken
    std::size_t _taken = 0;           // values of _ready
    std::uint64_t _pairs = 0;         // put into _ready since the start
    std::uint64_t _silence = 0;       // samples still to be put in, at the file's rate
    bool _isDecoded = false;
    bool _isComplete = false;
};

} // namespace quarner
