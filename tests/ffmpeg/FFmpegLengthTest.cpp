// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/resource.h>

#include <gtest/gtest.h>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/LengthCache.h"
#include "adapters/ffmpeg/Resampler.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

std::int64_t wholeSeconds(AudioRecipe recipe, double seconds) {
    recipe.samples = static_cast<std::uint64_t>(std::llround(seconds * recipe.rate));
    const auto media = makeFFmpegMediaService(makeFFmpegPCMService());
    const auto movie = media->movieWithFile(audioFixture(recipe));
    if (!movie)
        return -1;
    const QTTime time = movie->duration();
    EXPECT_EQ(time.value, static_cast<std::int64_t>(recipe.samples));
    EXPECT_EQ(time.scale, recipe.rate);
    return time.value / time.scale;
}

TEST(FFmpegMovies, AnMP3OfAHundredthLessThanAMinutePlaysFiftyNineSeconds) {
    EXPECT_EQ(wholeSeconds(mp3Recipe(), 59.99), 59);
    EXPECT_EQ(wholeSeconds(mp3Recipe(), 60.00), 60);
}

TEST(FFmpegMovies, AnM4AOfAHundredthLessThanAMinutePlaysFiftyNineSeconds) {
    EXPECT_EQ(wholeSeconds(aacRecipe(), 59.99), 59);
    EXPECT_EQ(wholeSeconds(aacRecipe(), 60.00), 60);
    EXPECT_EQ(wholeSeconds(alacRecipe(), 59.99), 59);
    EXPECT_EQ(wholeSeconds(alacRecipe(), 60.00), 60);
}

TEST(FFmpegMovies, AFileThatIsMissingOrNoSoundOpensNoMovie) {
    const TemporaryFolder folder;
    const auto media = makeFFmpegMediaService(makeFFmpegPCMService());
    EXPECT_EQ(media->movieWithFile(folder.file("missing.mp3")), nullptr);
    EXPECT_EQ(media->movieWithFile(folder.write("text.mp3", "text")), nullptr);
}

TEST(FFmpegMovies, TheUsualFileTypesCanBeOpened) {
    const auto types = makeFFmpegMediaService(makeFFmpegPCMService())->movieFileTypes(0);
    for (const std::string type : {"mp3", "m4a", "wav", "flac"})
        EXPECT_EQ(std::count(types.begin(), types.end(), type), 1) << type;
    EXPECT_EQ(std::count(types.begin(), types.end(), ""), 0);
}

TEST(FFmpegLengths, AFileThatHasChangedIsMeasuredAnew) {
    const TemporaryFolder folder;
    const auto service = makeFFmpegPCMService();
    AudioRecipe shorter = mp3Recipe();
    shorter.samples = 22050;
    const std::string path = folder.write("a.mp3", contentOf(audioFixture(mp3Recipe())));
    EXPECT_EQ(service->measure(path).value().sourceSamples, 441441U);
    EXPECT_EQ(service->measure(path).value().sourceSamples, 441441U);
    folder.write("a.mp3", contentOf(audioFixture(shorter)));
    EXPECT_EQ(service->measure(path).value().sourceSamples, 22050U);
    std::filesystem::remove(path);
    EXPECT_FALSE(service->measure(path));
}

TEST(FFmpegLengths, AFileThatCouldNotBeReadOnceIsReadAgain) {
    const std::string path = audioFixture(mp3Recipe());
    const auto pcm = makeFFmpegPCMService();
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {.rlim_cur = 0, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const bool isMeasured = pcm->measure(path).has_value();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(isMeasured);
    EXPECT_EQ(pcm->problemWith(path), "Too many open files");
    EXPECT_TRUE(pcm->measure(path));
}

TEST(FFmpegLengths, TheCacheKeepsOnlyTheLastFilesAndOnlyWhileTheyStayTheSame) {
    LengthCache cache(2);
    const FileStamp stamp = {.size = 1};
    const FileStamp other = {.size = 2};
    cache.keep("a", stamp, PCMLength{.sourceSamples = 1});
    cache.keep("b", stamp, PCMLength{.sourceSamples = 2});
    cache.keep("b", other, PCMLength{.sourceSamples = 3});
    EXPECT_EQ(cache.find("a", stamp).value()->sourceSamples, 1U);
    EXPECT_FALSE(cache.find("a", other));
    EXPECT_FALSE(cache.find("b", stamp));
    EXPECT_EQ(cache.find("b", other).value()->sourceSamples, 3U);
    cache.keep("c", stamp, PCMLength{.sourceSamples = 4});
    EXPECT_FALSE(cache.find("a", stamp));
    EXPECT_TRUE(cache.find("b", other) && cache.find("c", stamp));
}

/// The real output of the resampler for `samples` samples of silence.
std::uint64_t resampled(int samples, std::uint32_t rate) {
    AVCodecContext* layout = avcodec_alloc_context3(nullptr);
    layout->sample_fmt = AV_SAMPLE_FMT_FLTP;
    layout->sample_rate = static_cast<int>(rate);
    av_channel_layout_default(&layout->ch_layout, 2);
    Resampler resampler;
    std::vector<std::int16_t> out;
    EXPECT_TRUE(resampler.convertSilence(*layout, rate, static_cast<std::uint64_t>(samples), out));
    EXPECT_TRUE(resampler.flush(out));
    avcodec_free_context(&layout);
    return out.size() / 2;
}

TEST(ResampledLength, IsWhatTheResamplerMakes) {
    for (const std::uint32_t rate :
         {8000U, 11025U, 12000U, 16000U, 22050U, 24000U, 32000U, 44100U, 48000U, 88200U, 96000U})
        for (int samples = 200; samples < 900; samples += 3)
            ASSERT_EQ(resampledLength(static_cast<std::uint64_t>(samples), rate),
                      resampled(samples, rate))
                << samples << " samples at " << rate;
}

TEST(ResampledLength, IsExactWhereTheRatesMeet) {
    EXPECT_EQ(resampledLength(480480, 48000), 441441U);
    EXPECT_EQ(resampledLength(48000ULL * 3600 * 24, 48000), 44100ULL * 3600 * 24);
    EXPECT_EQ(resampledLength(0, 48000), 0U);
}

} // namespace
} // namespace quarner::testing
