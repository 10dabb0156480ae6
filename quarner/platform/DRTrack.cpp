// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRTrack.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <utility>

namespace quarner {

std::string_view DRTrack::className() const { return drClassName; }

bool DRTrack::isKindOfClass(std::string_view name) const { return name == drClassName; }

struct DRTrack::LaterEstimate {
    std::uint64_t blocks() {
        std::call_once(once, [this] { made = std::exchange(make, nullptr)(); });
        return made;
    }

    std::function<std::uint64_t()> make;
    std::uint64_t most = 0;
    std::once_flag once;
    std::uint64_t made = 0;
};

void DRTrack::setEstimateLength(std::function<std::uint64_t()> estimate, std::uint64_t most) {
    _laterEstimate = std::make_shared<LaterEstimate>();
    _laterEstimate->make = std::move(estimate);
    _laterEstimate->most = most;
}

bool DRTrack::isEstimateBelow(std::uint64_t blocks) const {
    const bool isDecided = blocks == 0 || (_laterEstimate && _laterEstimate->most < blocks);
    return isDecided ? blocks > 0 : estimateLength() < blocks;
}

std::uint64_t DRTrack::estimateLength() const {
    if (_laterEstimate)
        return _laterEstimate->blocks();
    const std::uint64_t blocks = std::uint64_t(_length.totalFrames()) + _preGap.totalFrames();
    return _estimateLength.value_or(blocks);
}

std::uint32_t sectorsForSamples(std::uint64_t sampleCount) {
    const std::uint64_t whole = sampleCount / DRTrack::samplesPerSector;
    const std::uint64_t sectors = whole + (sampleCount % DRTrack::samplesPerSector != 0 ? 1 : 0);
    constexpr std::uint64_t least = DRTrack::minimumSectors;
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp(sectors, least, most));
}

} // namespace quarner
