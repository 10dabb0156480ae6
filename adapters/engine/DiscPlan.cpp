// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/DiscPlan.h"

#include <algorithm>

#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

TrackPlan planTrack(const DRTrack& track) {
    const std::uint32_t length = track.length().totalFrames();
    if (track.sampleCount > std::uint64_t(length) * DRTrack::samplesPerSector)
        throw BurnFailure(DRError::Internal, track.path + ": the track is shorter than its sound",
                          track.path);
    return {.preGap = track.preGap().totalFrames(), .length = length};
}

} // namespace

std::uint64_t DiscPlan::sectors() const {
    std::uint64_t sum = 0;
    for (const TrackPlan& track : tracks)
        sum += std::uint64_t(track.preGap) + track.length;
    return sum;
}

std::size_t DiscPlan::trackAtSector(std::uint64_t sector) const {
    std::size_t number = 0;
    std::uint64_t end = 0;
    while (number < tracks.size() && end <= sector) {
        end += std::uint64_t(tracks[number].preGap) + tracks[number].length;
        ++number;
    }
    return number;
}

DiscPlan planAudioDisc(const DRLayout& layout) {
    if (layout.empty())
        throw BurnFailure(DRError::EmptyLayout, "the layout has no track");
    if (layout.size() > mostTracks)
        throw BurnFailure(DRError::TooManyTracks,
                          "the layout has " + std::to_string(layout.size()) + " tracks");
    DiscPlan plan;
    for (const auto& track : layout) {
        if (!track)
            throw BurnFailure(DRError::Internal, "the layout has a null track");
        plan.tracks.push_back(planTrack(*track));
    }
    TrackPlan& first = plan.tracks.front();
    first.preGap -= std::min(first.preGap, leadingGapSectors);
    return plan;
}

} // namespace quarner
