// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/ffmpeg/AudioDecoder.h"
#include "adapters/ffmpeg/Resampler.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

class WindowedFile;

/// One file as a CD holds it. With a length given it delivers exactly that: what decodes beyond it
/// is dropped, what is missing at the end is silence. So a file that was measured by its headers
/// and then does not decode still plays as long as it was measured.
///
/// Without a length it delivers what the file decodes to, which is how a file is measured that has
/// anything unusual about it: the count of one decode is the length of the next.
class FFmpegPCMStream : public PCMStream {
public:
    FFmpegPCMStream(std::string path, std::unique_ptr<WindowedFile> file,
                    std::unique_ptr<AudioDecoder> decoder,
                    std::optional<std::uint64_t> length = std::nullopt);
    ~FFmpegPCMStream() override;

    std::optional<std::size_t> read(std::span<std::int16_t> samples) override;
    std::string problem() const override;
    /// Whether that is damage in the file.
    bool isDamaged() const;

    /// The samples heard so far, silence in place of damage included, and their rate. Nothing if
    /// the rate has changed.
    struct Source {
        std::uint64_t samples = 0;
        std::uint32_t rate = 0;
    };
    std::optional<Source> source() const;

private:
    std::size_t take(std::span<std::int16_t> samples);
    bool produce();
    bool convert();
    SampleRange rangeFor(const AudioDecoder::Chunk& chunk) const;
    void countSource(const AudioDecoder::Chunk& chunk);
    bool convertSilence();
    bool finish();
    std::uint64_t missingPairs() const;

    const std::string _path;
    const std::unique_ptr<WindowedFile> _file; // the decoder reads it
    const std::unique_ptr<AudioDecoder> _decoder;
    const std::optional<std::uint64_t> _length; // pairs
    Resampler _resampler;
    std::vector<std::int16_t> _ready; // decoded, not yet read
    std::size_t _taken = 0;           // values of _ready
    std::uint64_t _pairs = 0;         // added to _ready since the start
    std::uint64_t _silence = 0;       // samples still to be put in
    std::uint32_t _silenceRate = 0;   // of those
    Source _source;
    bool _hasOneRate = true;
    bool _isDecoded = false;
    bool _isComplete = false;
};

} // namespace quarner
