// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "tests/ffmpeg/Decoding.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

std::string bigEndian(std::uint32_t value) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

class FFmpegEditLists : public ::testing::Test {
protected:
    /// Writes a file of the recipe, which has an edit list, with other numbers in boxes of it.
    class Patch {
    public:
        explicit Patch(const AudioRecipe& recipe) : content(contentOf(audioFixture(recipe))) {}

        /// `offset` is counted from the name of the box.
        Patch& set(const char* box, std::size_t offset, const std::string& bytes) {
            const std::size_t start = content.find(box);
            EXPECT_NE(start, std::string::npos) << box;
            content.replace(start + offset, bytes.size(), bytes);
            return *this;
        }
        /// An edit list in samples at 44.1 kHz.
        Patch& setEdit(std::uint32_t mediaTime, std::uint32_t duration) {
            set("mvhd", 16, bigEndian(44100));
            return set("elst", 12, bigEndian(duration)).set("elst", 16, bigEndian(mediaTime));
        }

        std::string content;
    };

    std::vector<std::int16_t> decodedAsMeasured(const std::string& content) const {
        const std::string path = folder.write("a.m4a", content);
        const auto length = service->measure(path);
        const auto samples = decoded(*service, path);
        EXPECT_TRUE(length && samples);
        if (!length || !samples)
            return {};
        EXPECT_EQ(samples->size(), 2 * length->discSamples);
        return *samples;
    }

    const TemporaryFolder folder;
    const std::shared_ptr<PCMService> service = makeFFmpegPCMService();
};

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
            const auto whole = decodedAsMeasured(contentOf(audioFixture(recipe)));
            EXPECT_EQ(whole.size(), 2 * samples) << recipe.name;
        }
}

TEST_F(FFmpegEditLists, BeginAndEndWithinPacketsToTheSample) {
    for (const Codec& codec : everyCodec()) {
        const auto whole = decodedAsMeasured(Patch(codec.recipe).content);
        ASSERT_EQ(whole.size(), 2 * codec.recipe.samples);
        for (const auto& [from, count] :
             std::vector<std::pair<std::uint32_t, std::uint32_t>>{{300, 220500},
                                                                  {0, 100001},
                                                                  {3079, 4097},
                                                                  {4096, 8192},
                                                                  {1, 1000},
                                                                  {441000, 400}}) {
            const auto part =
                decodedAsMeasured(Patch(codec.recipe).setEdit(codec.delay + from, count).content);
            EXPECT_EQ(part,
                      std::vector<std::int16_t>(whole.begin() + 2 * std::ptrdiff_t(from),
                                                whole.begin() + 2 * std::ptrdiff_t(from + count)))
                << codec.recipe.name << " from " << from;
        }
    }
}

TEST_F(FFmpegEditLists, AnEndBehindTheMediaIsTheEndOfTheMedia) {
    for (const Codec& codec : everyCodec())
        EXPECT_EQ(
            decodedAsMeasured(Patch(codec.recipe).setEdit(codec.delay, 10'000'000).content).size(),
            2 * codec.recipe.samples);
}

TEST_F(FFmpegEditLists, WithoutOneTheFirstPacketIsHeardAsTheFFmpegProgramPlaysIt) {
    for (const Codec& codec : everyCodec()) {
        const std::string content = Patch(codec.recipe).set("edts", 0, "free").content;
        const auto ours = decodedAsMeasured(content);
        const auto theirs = decodedByFFmpeg(folder.write("b.m4a", content));
        EXPECT_EQ(ours.size(), theirs.size()) << codec.recipe.name;
        EXPECT_LE(largestDifference(ours, theirs), 1);
    }
}

} // namespace
} // namespace quarner::testing
