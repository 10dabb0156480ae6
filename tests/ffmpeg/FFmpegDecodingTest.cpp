// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <thread>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "tests/ffmpeg/Decoding.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

/// One kind of file, with what is known of it before it is encoded.
struct Kind {
    std::string name;
    AudioRecipe recipe;
    bool isTrimmed = true; ///< notes the encoder's padding
};

Kind kind(std::string name, AudioRecipe recipe, std::uint32_t rate, std::uint32_t channels,
          std::uint64_t samples, bool isTrimmed = true) {
    recipe.rate = rate;
    recipe.channels = channels;
    recipe.samples = samples;
    return {std::move(name), std::move(recipe), isTrimmed};
}

std::vector<Kind> everyKind() {
    std::vector<Kind> kinds = {
        kind("mp3At44100Stereo", mp3Recipe(), 44100, 2, 441441),
        kind("mp3At48000Mono", mp3Recipe(), 48000, 1, 480480),
        kind("mp3At22050Stereo", mp3Recipe(), 22050, 2, 220720),
        kind("mp3OfHalfASecond", mp3Recipe(), 44100, 2, 22050),
        kind("variableMP3At44100Mono", variableMP3Recipe(), 44100, 1, 441441),
        kind("variableMP3At48000Stereo", variableMP3Recipe(), 48000, 2, 480480),
        kind("untaggedMP3At44100Stereo", untaggedMP3Recipe(), 44100, 2, 441441, false),
        kind("untaggedMP3At22050Mono", untaggedMP3Recipe(), 22050, 1, 220720, false),
        kind("untaggedVariableMP3At48000", untaggedVBRRecipe(), 48000, 2, 480480, false),
        kind("aacAt44100Stereo", aacRecipe(), 44100, 2, 441441),
        kind("aacAt48000Stereo", aacRecipe(), 48000, 2, 480480),
        kind("aacAt22050Mono", aacRecipe(), 22050, 1, 220720),
        kind("aacOfHalfASecond", aacRecipe(), 44100, 2, 22050),
        kind("alacAt44100Stereo", alacRecipe(), 44100, 2, 441441),
        kind("alacAt48000Mono", alacRecipe(), 48000, 1, 480480),
        kind("flacAt48000Stereo", {"flac.flac", {}}, 48000, 2, 100000),
        kind("wavAt22050Mono", {"wav.wav", {}}, 22050, 1, 100000),
        kind("alacOfHalfASecond", alacRecipe(), 22050, 2, 11025),
    };
    for (Kind cover : {kind("mp3WithCover", mp3Recipe(), 44100, 2, 100000),
                       kind("aacWithCover", aacRecipe(), 44100, 2, 100000)}) {
        cover.recipe.hasCover = true;
        kinds.push_back(cover);
    }
    return kinds;
}

class EveryKindOfFile : public ::testing::TestWithParam<Kind> {
protected:
    const AudioRecipe& recipe() const { return GetParam().recipe; }
    const std::string path = audioFixture(GetParam().recipe);
    const std::shared_ptr<PCMService> service = makeFFmpegPCMService();
};

TEST_P(EveryKindOfFile, DecodesToTheSamplesOfTheFFmpegProgram) {
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(ours);
    const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
    EXPECT_LE(ours->size(), theirs.size()); // the program leaves the tail of an AAC file in
    EXPECT_LT(theirs.size() - ours->size(), std::size_t(2 * 2 * 2048));
    EXPECT_LE(largestDifference(*ours, theirs), 1);
}

TEST_P(EveryKindOfFile, IsMeasuredAsItIsDelivered) {
    const auto length = service->measure(path);
    ASSERT_TRUE(length);
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(ours);
    EXPECT_EQ(ours->size(), 2 * length->discSamples);
    EXPECT_EQ(length->sourceRate, recipe().rate);
}

TEST_P(EveryKindOfFile, IsAsLongAsItsSourceWas) {
    const auto length = service->measure(path);
    ASSERT_TRUE(length);
    if (GetParam().isTrimmed) {
        EXPECT_EQ(length->sourceSamples, recipe().samples);
        EXPECT_EQ(length->discSamples, recipe().samplesAtDiscRate());
    } else {
        EXPECT_EQ(2 * length->discSamples, decodedByFFmpeg(path).size());
        EXPECT_GT(length->sourceSamples, recipe().samples);
    }
}

TEST_P(EveryKindOfFile, DeliversTheSameWhateverTheSizeOfTheReads) {
    const auto whole = decoded(*service, path, 2'000'000);
    const auto pieces = decoded(*service, path, 1178);
    ASSERT_TRUE(whole && pieces);
    EXPECT_EQ(*whole, *pieces);
}

INSTANTIATE_TEST_SUITE_P(, EveryKindOfFile, ::testing::ValuesIn(everyKind()),
                         [](const auto& each) { return each.param.name; });

TEST(FFmpegDecoding, SeveralFilesAreDecodedAtOnce) {
    const auto service = makeFFmpegPCMService();
    const std::vector<std::string> paths = {audioFixture(mp3Recipe()), audioFixture(aacRecipe()),
                                            audioFixture(alacRecipe()),
                                            audioFixture(variableMP3Recipe())};
    std::vector<std::size_t> counts(paths.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < paths.size(); ++i)
        threads.emplace_back([&, i] {
            const auto length = service->measure(paths[i]);
            const auto samples = decoded(*service, paths[i]);
            if (length && samples && samples->size() == 2 * length->discSamples)
                counts[i] = samples->size();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counts, std::vector<std::size_t>(paths.size(), 2 * 441441));
}

TEST(FFmpegDecoding, AFileWithoutSoundIsNotOpened) {
    const TemporaryFolder folder;
    const auto service = makeFFmpegPCMService();
    std::string noise(300000, '\0');
    std::uint32_t state = 1;
    for (char& byte : noise)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    for (const std::string& path :
         {folder.file("missing.mp3"), folder.path().string(), folder.write("empty.mp3"),
          folder.write("text.mp3", "no sound at all\n"), folder.write("noise.mp3", noise),
          folder.write("text.m4a", "no sound at all\n"), folder.write("noise.m4a", noise)}) {
        EXPECT_FALSE(service->measure(path)) << path;
        EXPECT_EQ(service->open(path), nullptr) << path;
    }
}

TEST(FFmpegDecoding, OneFrameInTheNoiseIsNoSound) {
    const TemporaryFolder folder;
    const auto service = makeFFmpegPCMService();
    const std::string sound = contentOf(audioFixture(untaggedMP3Recipe()));
    const std::string noise(20000, 'n');
    const std::string path = folder.write("a.mp3", noise + sound.substr(0, 600) + noise);
    EXPECT_FALSE(service->measure(path));
    EXPECT_EQ(service->open(path), nullptr);
}

TEST(FFmpegDecoding, APlaylistIsNotFollowed) {
    const TemporaryFolder folder;
    const std::string sound = audioFixture(mp3Recipe());
    const auto service = makeFFmpegPCMService();
    const std::string list =
        "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\n" + sound + "\n#EXT-X-ENDLIST\n";
    EXPECT_FALSE(service->measure(folder.write("list.m3u8", list)));
    EXPECT_FALSE(service->measure(folder.write("list.mp3", list)));
    EXPECT_FALSE(service->measure(
        folder.write("concat.mp3", "ffconcat version 1.0\nfile '" + sound + "'\n")));
}

TEST(FFmpegDecoding, APathIsAlwaysALocalFile) {
    const TemporaryFolder folder;
    const std::string sound = contentOf(audioFixture(aacRecipe()));
    const auto service = makeFFmpegPCMService();
    for (const std::string name :
         {"with space.m4a", "quo'te\"s.m4a", "http:x.m4a", "concat:a|b.m4a", "-y.m4a", "%d.m4a",
          "Grüße 東京 🎵.m4a", "invalid \xff\xfe.m4a", "line\nend.m4a", "a?b#c.m4a", "file:x.m4a"}) {
        const std::string path = folder.write(name, sound);
        const auto length = service->measure(path);
        EXPECT_TRUE(length && length->discSamples == 441441) << name;
        EXPECT_NE(service->open(path), nullptr) << name;
    }
    // The same without a folder before it, as a caller in the working directory would write it.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const std::string name : {"http:x.m4a", "concat:a|b.m4a", "-y.m4a", "file:x.m4a"})
        EXPECT_TRUE(service->measure(name)) << name;
    EXPECT_FALSE(service->measure("x.m4a"));
    std::filesystem::current_path(before);
}

} // namespace
} // namespace quarner::testing
