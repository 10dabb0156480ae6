// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "quarner/platform/DRTrack.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/e2e/MixedDisc.h"
#include "tests/support/AudioFixtures.h"

namespace quarner::testing {
namespace {

constexpr std::uint64_t preGap = 150;         // sectors
constexpr std::size_t sectorValues = 2 * 588; // of 16 bits

std::vector<std::int16_t> values(const std::string& bytes) {
    std::vector<std::int16_t> result(bytes.size() / sizeof(std::int16_t));
    std::copy_n(reinterpret_cast<const char*>(bytes.data()), bytes.size(),
                reinterpret_cast<char*>(result.data()));
    return result;
}

/// The expected sound of a track: its file as the ffmpeg program decodes it, with the length of the
/// source before it was encoded.
std::vector<std::int16_t> expectedSound(const DiscFile& file) {
    std::vector<std::int16_t> sound = decodedByFFmpeg(file.path);
    if (file.sourceSamples) {
        EXPECT_GE(sound.size(), 2 * *file.sourceSamples) << file.path;
        sound.resize(static_cast<std::size_t>(2 * *file.sourceSamples));
    }
    return sound;
}

/// The expected positions of the tracks, computed only from the lengths of their sounds.
std::vector<TrackPlace> expectedPlaces(const MixedDisc& disc) {
    std::vector<TrackPlace> places;
    for (const DiscFile& file : disc.files()) {
        const std::uint64_t start = places.empty() ? 0 : places.back().end + preGap;
        places.push_back({start, start + sectorsForSamples(expectedSound(file).size() / 2)});
    }
    return places;
}

TEST(MixedDisc, EveryReaderSeesTheSameTracks) {
    const MixedDisc disc;
    const std::vector<TrackPlace> places = expectedPlaces(disc);
    std::vector<std::uint64_t> starts, lengths, withPreGap;
    for (const TrackPlace& place : places) {
        withPreGap.push_back(place.end - (starts.empty() ? 0 : place.start - preGap));
        lengths.push_back(place.end - place.start);
        starts.push_back(place.start);
    }
    starts.push_back(places.back().end); // the lead-out
    EXPECT_EQ(placesByCdrdao(disc.cue()), places);
    EXPECT_EQ(startsByCdInfo(disc.cue()), starts);
    EXPECT_EQ(sectorsByLibburn(disc.cue()), withPreGap);
    std::vector<std::uint64_t> lengthsByBchunk;
    for (const auto& sound : soundByBchunk(disc.cue(), disc.bin()))
        lengthsByBchunk.push_back(sound.size() / sectorValues);
    EXPECT_EQ(lengthsByBchunk, lengths);
}

TEST(MixedDisc, TheUsedCapacityCountsEverySectorAndEveryPreGap) {
    const MixedDisc disc;
    const std::uint64_t size = std::filesystem::file_size(disc.bin());
    EXPECT_EQ(size % audioSectorSize, 0U);
    const std::uint64_t framesOfTheDisc =
        size / audioSectorSize + preGap; // that of track 1 is not in the BIN
    EXPECT_EQ(disc.usedCapacity(), framesOfTheDisc / 75);
}

TEST(MixedDisc, EveryTrackIsWhatFFmpegDecodesAndThenSilence) {
    const MixedDisc disc;
    const auto tracks = soundByBchunk(disc.cue(), disc.bin());
    ASSERT_EQ(tracks.size(), disc.files().size());
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const std::string& path = disc.files()[i].path;
        const std::vector<std::int16_t> sound = expectedSound(disc.files()[i]);
        ASSERT_GE(tracks[i].size(), sound.size()) << path;
        EXPECT_LE(largestDifference(tracks[i], sound), 1) << path;
        const auto end = tracks[i].begin() + static_cast<std::ptrdiff_t>(sound.size());
        EXPECT_TRUE(std::all_of(end, tracks[i].end(), [](auto value) { return value == 0; }))
            << path;
    }
}

TEST(MixedDisc, TheSilenceBeforeEachTrackIsSilent) {
    const MixedDisc disc;
    const std::vector<std::int16_t> all = values(contentOf(disc.bin()));
    const std::vector<TrackPlace> places = placesByCdrdao(disc.cue());
    for (std::size_t i = 1; i < places.size(); ++i) {
        const auto from = all.begin() + std::ptrdiff_t(places[i - 1].end * sectorValues);
        const auto to = all.begin() + std::ptrdiff_t(places[i].start * sectorValues);
        EXPECT_EQ(to - from, std::ptrdiff_t(preGap * sectorValues));
        EXPECT_TRUE(std::all_of(from, to, [](auto value) { return value == 0; })) << i + 1;
    }
}

} // namespace
} // namespace quarner::testing
