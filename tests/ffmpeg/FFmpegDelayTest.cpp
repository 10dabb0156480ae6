// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <libavformat/version.h>

#include "adapters/ffmpeg/Resampler.h"
#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"

namespace quarner::testing {
namespace {

using Samples = std::vector<std::int16_t>;

/// The samples before the sound of an M4A file, as different encoders note them.
class FFmpegDelays : public Measuring {
protected:
    static constexpr std::uint32_t packet = 1024; // samples of AAC

    /// An AAC file at a rate, without an edit list.
    static PatchedM4A plain(std::uint32_t rate, std::uint32_t channels = 2) {
        AudioRecipe recipe = aacRecipe();
        recipe.rate = rate;
        recipe.channels = channels;
        recipe.samples = 5 * rate + 7;
        return PatchedM4A(recipe).removeEdit();
    }

    /// Of sound in stereo, without its first samples.
    static Samples without(const Samples& samples, std::size_t count) {
        return {samples.begin() + std::ptrdiff_t(2 * count), samples.end()};
    }

    void expectAsFFmpegPlaysIt(const std::string& content, const Samples& ours) const {
        const Samples theirs = decodedByFFmpeg(folder.write("b.m4a", content));
        EXPECT_EQ(ours.size(), theirs.size());
        EXPECT_LE(largestDifference(ours, theirs), 1);
    }

    /// FFmpeg 7 counts the delay at the rate of the decoded sound, which is twice that of the
    /// track, and so plays half of it.
    void expectAsFFmpegPlaysHighEfficiency(const std::string& content, const Samples& ours) const {
        if (LIBAVFORMAT_VERSION_MAJOR < 61)
            expectAsFFmpegPlaysIt(content, ours);
    }
};

TEST_F(FFmpegDelays, ThatAreNotedAreNotHeard) {
    for (const std::uint32_t delay : {1U, 2112U, 5000U}) {
        const Samples whole = decodedContent(plain(44100).content);
        const std::string noted = plain(44100).noteDelay(delay, 700).content;
        const Samples ours = decodedContent(noted);
        EXPECT_EQ(ours, without(whole, delay));
        expectAsFFmpegPlaysIt(noted, ours);
    }
}

TEST_F(FFmpegDelays, OfHighEfficiencyCountInTheClockOfTheTrack) {
    for (const std::uint32_t channels : {1U, 2U})
        for (const std::uint32_t delay : {2112U, 2336U}) {
            const Samples whole =
                decodedContent(plain(22050, channels).declareHighEfficiency(22050).content);
            const std::string noted =
                plain(22050, channels).declareHighEfficiency(22050).noteDelay(delay, 700).content;
            const Samples ours = decodedContent(noted);
            EXPECT_EQ(ours, without(whole, 2 * std::size_t(delay)));
            expectAsFFmpegPlaysHighEfficiency(noted, ours);
        }
}

TEST_F(FFmpegDelays, OfHighEfficiencyAtOtherRatesCountInTheClockOfTheTrack) {
    for (const std::uint32_t rate : {8000U, 24000U}) {
        const auto file = [&] { return plain(rate).declareHighEfficiency(rate); };
        const std::string noted = file().noteDelay(2112, 700).content;
        const Samples ours = decodedContent(noted);
        const std::uint64_t packets = (5 * rate + 7 + 2 * packet - 1) / packet;
        EXPECT_EQ(ours.size() / 2, resampledLength(2 * (packets * packet - 2112), 2 * rate));
        expectAsFFmpegPlaysHighEfficiency(noted, ours);
    }
}

TEST_F(FFmpegDelays, OfHighEfficiencyInAnEditListAreObeyedToTheSample) {
    const auto file = [] {
        AudioRecipe recipe = aacRecipe();
        recipe.rate = 22050;
        return PatchedM4A(recipe).declareHighEfficiency(22050);
    };
    const Samples whole = decodedContent(file().removeEdit().content);
    constexpr std::uint32_t from = 2336; // ticks of the track
    constexpr std::uint32_t count = 100'003;
    const Samples part = decodedContent(file().setEdit(from, count, 22050).content);
    EXPECT_EQ(part, Samples(whole.begin() + 4 * from, whole.begin() + 4 * (from + count)));
}

TEST_F(FFmpegDelays, ThatAreNotedBesideAnEditListDoNotCount) {
    const PatchedM4A file(aacRecipe());
    EXPECT_EQ(decodedContent(PatchedM4A(file).noteDelay(2112, 700).content),
              decodedContent(file.content));
}

TEST_F(FFmpegDelays, OfAnEncoderThatTheDecoderKnowsAreNotHeard) {
    const Samples whole = decodedContent(plain(44100).content);
    const std::string known = plain(44100).set("Lavc", 1, "libfaac 1.30").content;
    const Samples ours = decodedContent(known);
    EXPECT_EQ(ours, without(whole, packet));
    expectAsFFmpegPlaysIt(known, ours);
}

TEST_F(FFmpegDelays, ThatDecodeToNothingAreNotHeard) {
    const Samples whole = decodedContent(plain(44100).content);
    const std::string empty = plain(44100).set("mdat", 4, "\xe0").content; // a block's end
    const Samples ours = decodedContent(empty);
    EXPECT_EQ(ours.size() / 2, whole.size() / 2 - packet);
    expectAsFFmpegPlaysIt(empty, ours);
}

TEST_F(FFmpegDelays, ThatDecodeToNothingCountInAnEditList) {
    AudioRecipe recipe = aacRecipe();
    recipe.encoder.insert(recipe.encoder.end(), {"-aac_pns", "0"}); // no noise of the decoder's own
    const PatchedM4A file(recipe);
    const Samples whole = decodedContent(file.content);
    const Samples ours = decodedContent(PatchedM4A(file).set("mdat", 4, "\xe0").content);
    EXPECT_EQ(ours.size(), whole.size());
    EXPECT_LE(largestDifference(ours, whole, std::size_t(2 * packet)), 1);
}

} // namespace
} // namespace quarner::testing
