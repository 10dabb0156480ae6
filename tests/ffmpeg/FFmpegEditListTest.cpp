// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"

namespace quarner::testing {
namespace {

using FFmpegEditLists = Measuring;

/// The codec and the samples of the media before the sound, as the ffmpeg program writes them.
struct Codec {
    AudioRecipe recipe;
    std::uint32_t delay;
};
std::vector<Codec> everyCodec() { return {{aacRecipe(), 1024}, {alacRecipe(), 0}}; }

TEST_F(FFmpegEditLists, AnEndInMillisecondsNearTheEndOfTheMediaIsTheEndOfTheMedia) {
    for (const Codec& codec : everyCodec())
        for (const std::uint64_t samples : {441000U, 441001U, 441017U, 441022U, 441030U, 441043U}) {
            AudioRecipe recipe = codec.recipe;
            recipe.samples = samples;
            const auto whole = decodedContent(contentOf(audioFixture(recipe)));
            EXPECT_EQ(whole.size(), 2 * samples) << recipe.name;
        }
}

TEST_F(FFmpegEditLists, BeginAndEndWithinPacketsToTheSample) {
    for (const Codec& codec : everyCodec()) {
        const auto whole = decodedContent(PatchedM4A(codec.recipe).content);
        ASSERT_EQ(whole.size(), 2 * codec.recipe.samples);
        for (const auto& [from, count] :
             std::vector<std::pair<std::uint32_t, std::uint32_t>>{{300, 220500},
                                                                  {0, 100001},
                                                                  {3079, 4097},
                                                                  {4096, 8192},
                                                                  {1, 1000},
                                                                  {441000, 400}}) {
            const auto part =
                decodedContent(PatchedM4A(codec.recipe).setEdit(codec.delay + from, count).content);
            EXPECT_EQ(part,
                      std::vector<std::int16_t>(whole.begin() + 2 * std::ptrdiff_t(from),
                                                whole.begin() + 2 * std::ptrdiff_t(from + count)))
                << codec.recipe.name << " from " << from;
        }
    }
}

TEST_F(FFmpegEditLists, AnEndBehindTheMediaIsTheEndOfTheMedia) {
    for (const Codec& codec : everyCodec())
        EXPECT_EQ(decodedContent(PatchedM4A(codec.recipe).setEdit(codec.delay, 10'000'000).content)
                      .size(),
                  2 * codec.recipe.samples);
}

TEST_F(FFmpegEditLists, AnEndInMillisecondsCountsWhereTheLastPacketIsWhole) {
    AudioRecipe recipe = alacRecipe();
    constexpr std::uint32_t milliseconds = 9287; // 409556.7 samples
    recipe.samples = 100 * 4096ULL;
    EXPECT_EQ(decodedContent(PatchedM4A(recipe).setEdit(0, milliseconds, 1000).content).size(),
              2 * 409557U);
    ++recipe.samples; // alone in its packet: the table knows the end
    EXPECT_EQ(decodedContent(PatchedM4A(recipe).setEdit(0, milliseconds, 1000).content).size(),
              2 * recipe.samples);
}

TEST_F(FFmpegEditLists, WithoutADurationEndWithTheMedia) {
    for (const Codec& codec : everyCodec())
        EXPECT_EQ(
            decodedContent(PatchedM4A(codec.recipe).setEdit(codec.delay + 100, 0).content).size(),
            2 * (codec.recipe.samples - 100));
}

std::vector<std::vector<PatchedM4A::Edit>> severalCuts() {
    std::vector<PatchedM4A::Edit> seventeen;
    for (std::uint32_t i = 0; i < 17; ++i)
        seventeen.push_back({1024 + i * 4000, 2000});
    std::vector<PatchedM4A::Edit> emptyOnes(16, {PatchedM4A::emptyEdit, 10});
    emptyOnes.push_back({1024, 50'000});
    std::vector<PatchedM4A::Edit> hiddenOne = emptyOnes;
    hiddenOne.front() = {1024, 50'000};
    return {{{1024, 20'000}, {60'000, 20'000}},
            {{1024, 50'000}, {1024, 50'000}},
            seventeen,
            emptyOnes,
            hiddenOne};
}

TEST_F(FFmpegEditLists, WithMoreThanOneCutPlayAsTheFFmpegProgramPlaysThem) {
    for (Codec codec : everyCodec()) {
        codec.recipe.samples = 100'000;
        for (const auto& edits : severalCuts()) {
            const std::string content = PatchedM4A(codec.recipe).setEdits(edits).content;
            const auto ours = decodedContent(content);
            const auto theirs = decodedByFFmpeg(folder.write("b.m4a", content));
            EXPECT_EQ(ours.size(), theirs.size()) << codec.recipe.name << edits.size();
            EXPECT_LE(largestDifference(ours, theirs), 1) << codec.recipe.name << edits.size();
        }
    }
}

TEST_F(FFmpegEditLists, WithoutOneTheFirstPacketIsHeardAsTheFFmpegProgramPlaysIt) {
    for (const Codec& codec : everyCodec()) {
        const std::string content = PatchedM4A(codec.recipe).removeEdit().content;
        const auto ours = decodedContent(content);
        const auto theirs = decodedByFFmpeg(folder.write("b.m4a", content));
        EXPECT_EQ(ours.size(), theirs.size()) << codec.recipe.name;
        EXPECT_LE(largestDifference(ours, theirs), 1);
    }
}

} // namespace
} // namespace quarner::testing
