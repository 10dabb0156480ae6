// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/PCMService.h"

namespace quarner {

/// A PCM service for files of raw samples: 44.1 kHz, 16 bits, stereo, in the byte order of this
/// machine.
class RawSound : public PCMService {
public:
    static constexpr std::size_t bytesPerPair = 4;

    /// Called on the reading thread before each read: the path and the pairs read so far.
    using ReadHook = std::function<void(const std::string&, std::uint64_t)>;
    void setReadHook(ReadHook hook) { _hook = std::move(hook); }

    std::optional<PCMLength> measure(const std::string& path) override {
        std::error_code error;
        const std::uint64_t pairs = std::filesystem::file_size(path, error) / bytesPerPair;
        if (error || pairs == 0)
            return std::nullopt;
        return PCMLength{.sourceSamples = pairs, .sourceRate = 44100, .discSamples = pairs};
    }

    std::unique_ptr<PCMStream> open(const std::string& path) override {
        auto stream = std::make_unique<Stream>(path, _hook);
        return stream->isOpen() ? std::move(stream) : nullptr;
    }

private:
    class Stream : public PCMStream {
    public:
        Stream(const std::string& path, ReadHook hook)
            : _path(path), _file(path, std::ios::binary), _hook(std::move(hook)) {}
        bool isOpen() const { return _file.is_open(); }
        std::optional<std::size_t> read(std::span<std::int16_t> samples) override {
            if (_hook)
                _hook(_path, _pairs);
            _file.read(reinterpret_cast<char*>(samples.data()),
                       static_cast<std::streamsize>(samples.size_bytes()));
            const auto count = static_cast<std::size_t>(_file.gcount());
            _pairs += count / bytesPerPair;
            return count / sizeof(std::int16_t);
        }

    private:
        const std::string _path;
        std::ifstream _file;
        const ReadHook _hook;
        std::uint64_t _pairs = 0;
    };

    ReadHook _hook;
};

/// Returns `pairs` stereo samples of noise that depends on the seed, as a file for `RawSound`. The
/// noise repeats after a time that has no divisor in common with a sector.
inline std::string rawNoise(std::uint64_t pairs, std::uint32_t seed) {
    constexpr std::size_t period = 65'521 * RawSound::bytesPerPair;
    std::string bytes(static_cast<std::size_t>(pairs) * RawSound::bytesPerPair, '\0');
    std::uint32_t state = seed * 2654435761U + 1;
    for (std::size_t i = 0; i + 4 <= std::min(bytes.size(), period); i += 4) {
        state = state * 1664525U + 1013904223U;
        std::memcpy(bytes.data() + i, &state, sizeof state);
    }
    for (std::size_t i = period; i < bytes.size(); i += period)
        std::memcpy(bytes.data() + i, bytes.data(), std::min(period, bytes.size() - i));
    return bytes;
}

} // namespace quarner
