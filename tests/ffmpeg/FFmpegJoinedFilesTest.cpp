// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "tests/ffmpeg/Decoding.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

struct Format {
    std::uint32_t rate;
    std::uint32_t channels;
};

std::vector<Format> everyFormat() {
    return {{22050, 1}, {22050, 2}, {32000, 1}, {32000, 2},
            {44100, 1}, {44100, 2}, {48000, 1}, {48000, 2}};
}

AudioRecipe secondOf(const Format& format) {
    AudioRecipe recipe = untaggedMP3Recipe();
    recipe.rate = format.rate;
    recipe.channels = format.channels;
    recipe.samples = format.rate;
    return recipe;
}

/// The samples of the longest frame of a format at 44.1 kHz.
std::size_t frameOf(const Format& format) {
    return std::size_t(format.rate < 32000 ? 576 : 1152) * 44100 / format.rate + 1;
}

class JoinedMP3s : public ::testing::TestWithParam<std::tuple<Format, Format>> {
protected:
    const TemporaryFolder folder;
    const std::shared_ptr<PCMService> service = makeFFmpegPCMService();
};

TEST_P(JoinedMP3s, PlayEachPartAtItsOwnRate) {
    const auto& [first, second] = GetParam();
    const std::string path = folder.write("a.mp3", contentOf(audioFixture(secondOf(first))) +
                                                       contentOf(audioFixture(secondOf(second))));
    const auto length = service->measure(path);
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(length && ours);
    ASSERT_EQ(ours->size(), 2 * length->discSamples);
    const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
    const auto parts = service->measure(audioFixture(secondOf(first)))->discSamples +
                       service->measure(audioFixture(secondOf(second)))->discSamples;
    constexpr std::uint64_t rounded = 2; // at both ends of the frame at the join
    EXPECT_LE(std::max(parts, length->discSamples) - std::min(parts, length->discSamples), rounded);
    // The program plays the frame at the join at the rate before it.
    const auto frame = std::max(frameOf(first), frameOf(second));
    EXPECT_LE(std::max(ours->size(), theirs.size()) - std::min(ours->size(), theirs.size()),
              2 * frame);
    // The join is after one second and a little; the parts are compared from their outer ends.
    const std::size_t part = 2 * 42000;
    ASSERT_GT(std::min(ours->size(), theirs.size()), 2 * part);
    // The program itself plays the first part of some joined files otherwise than alone.
    const std::vector<std::int16_t> alone = decodedByFFmpeg(audioFixture(secondOf(first)));
    EXPECT_LE(largestDifference({ours->begin(), ours->begin() + part}, alone), 1);
    EXPECT_LE(
        largestDifference({ours->end() - part, ours->end()}, {theirs.end() - part, theirs.end()}),
        1);
}

INSTANTIATE_TEST_SUITE_P(
    , JoinedMP3s,
    ::testing::Combine(::testing::ValuesIn(everyFormat()), ::testing::ValuesIn(everyFormat())),
    [](const auto& each) {
        const auto name = [](const Format& format) {
            return std::to_string(format.rate) + (format.channels == 1 ? "Mono" : "Stereo");
        };
        return name(std::get<0>(each.param)) + "Then" + name(std::get<1>(each.param));
    });

} // namespace
} // namespace quarner::testing
