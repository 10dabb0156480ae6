// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>

#include "quarner/platform/PCMService.h"

namespace quarner {

/// Gives every file the same sound, whatever it holds: samples that count up.
class MemoryPCM : public PCMService {
public:
    std::uint64_t pairs = 0; ///< what every file plays
    bool opens = true;
    bool failsAtTheEnd = false; ///< a read beyond the last sample fails
    std::string problem;        ///< of a file that cannot be opened or read
    std::atomic<int> opened = 0;
    std::atomic<int> openNow = 0; ///< streams that are open now

    static std::int16_t valueAt(std::uint64_t index) { return std::int16_t(index % 30'000 + 1); }

    std::optional<PCMLength> measure(const std::string& /*path*/) override {
        return opens ? std::optional(PCMLength{pairs, 44100, pairs}) : std::nullopt;
    }
    std::optional<PCMLength> measureWhile(const std::string& path,
                                          const MayContinue& mayContinue) override {
        return !mayContinue || mayContinue() ? measure(path) : std::nullopt;
    }
    std::unique_ptr<PCMStream> open(const std::string& /*path*/) override {
        if (!opens)
            return nullptr;
        ++opened;
        return std::make_unique<Stream>(*this);
    }
    std::string problemWith(const std::string& /*path*/) override { return problem; }

private:
    class Stream : public PCMStream {
    public:
        explicit Stream(MemoryPCM& service) : _service(service) { ++_service.openNow; }
        ~Stream() override { --_service.openNow; }
        std::optional<std::size_t> read(std::span<std::int16_t> samples) override {
            const std::uint64_t left = _service.pairs * 2 - _next;
            if (left == 0 && _service.failsAtTheEnd)
                return std::nullopt;
            const std::size_t count = std::size_t(std::min<std::uint64_t>(samples.size(), left));
            for (std::size_t i = 0; i < count; ++i)
                samples[i] = valueAt(_next++);
            return count;
        }
        std::string problem() const override { return _service.problem; }

    private:
        MemoryPCM& _service;
        std::uint64_t _next = 0;
    };
};

} // namespace quarner
