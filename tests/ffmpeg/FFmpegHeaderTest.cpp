// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>

#include "adapters/ffmpeg/EncoderTag.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/MpegSource.h"
#include "tests/ffmpeg/Decoding.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

class FFmpegHeaders : public ::testing::Test {
protected:
    std::optional<SoundLength> proven(const std::string& path) const {
        const auto file = WindowedFile::open(path);
        return file ? MpegSource(*file).provenLength() : std::nullopt;
    }
    std::string write(const std::string& content) const { return folder.write("a.mp3", content); }

    /// Expects that the header proves nothing, and that the file plays as long as it is measured
    /// and as the ffmpeg program plays it.
    void expectFound(const std::string& content) const {
        const std::string path = write(content);
        EXPECT_FALSE(proven(path));
        const auto length = service->measure(path);
        const auto ours = decoded(*service, path);
        ASSERT_TRUE(length && ours);
        EXPECT_EQ(ours->size(), 2 * length->discSamples);
        EXPECT_EQ(ours->size(), decodedByFFmpeg(path).size());
    }

    const TemporaryFolder folder;
    const std::shared_ptr<PCMService> service = makeFFmpegPCMService();
    const std::string tagged = contentOf(audioFixture(mp3Recipe()));
    const std::size_t tag = tagged.find("Info");
};

TEST_F(FFmpegHeaders, ATagWithTheRightChecksumAndNumberOfBytesProvesTheLength) {
    for (AudioRecipe recipe : {mp3Recipe(), variableMP3Recipe()})
        for (const std::uint32_t rate : {22050U, 44100U, 48000U})
            for (const std::uint32_t channels : {1U, 2U}) {
                recipe.rate = rate;
                recipe.channels = channels;
                recipe.samples = 5 * rate + 7;
                const auto length = proven(audioFixture(recipe));
                ASSERT_TRUE(length) << recipe.name << rate << channels;
                EXPECT_EQ(length->samples, recipe.samples);
                EXPECT_EQ(length->rate, rate);
            }
}

TEST_F(FFmpegHeaders, AProvenFileIsHardlyRead) {
    const std::string path = audioFixture(mp3Recipe());
    const auto file = WindowedFile::open(path);
    ASSERT_NE(file, nullptr);
    ASSERT_TRUE(MpegSource(*file).provenLength());
    EXPECT_LE(file->bytesRead(), 3 * 4096U);
}

TEST_F(FFmpegHeaders, AFileOfAnotherKindIsNotSearchedForFrames) {
    const auto file = WindowedFile::open(audioFixture(aacRecipe()));
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(MpegSource(*file).isCertain());
    EXPECT_LE(file->bytesRead(), 3 * 4096U);
}

TEST_F(FFmpegHeaders, ATagOfALongerFileIsNotBelieved) {
    AudioRecipe recipe = mp3Recipe();
    recipe.samples = 44100 * 60;
    const std::string longer = contentOf(audioFixture(recipe));
    expectFound(longer.substr(0, 8000));
}

TEST_F(FFmpegHeaders, ATagWhoseNumberOfBytesDoesNotFitIsNotBelieved) {
    expectFound(tagged + contentOf(audioFixture(untaggedMP3Recipe())));
    expectFound(tagged.substr(0, tagged.size() - 5000));
}

TEST_F(FFmpegHeaders, ATagWithAWrongChecksumIsNotBelieved) {
    std::string content = tagged;
    content[tag + 10] = static_cast<char>(content[tag + 10] ^ 1); // 256 frames more or fewer
    const std::string path = write(content);
    EXPECT_FALSE(proven(path));
    const auto length = service->measure(path);
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(length && ours);
    EXPECT_EQ(ours->size(), 2 * length->discSamples);
}

TEST_F(FFmpegHeaders, TagsInFrontAndBehindDoNotCount) {
    const std::string id3v1 = "TAG" + std::string(125, ' ');
    const std::string ape =
        "APETAGEX" + std::string("\xd0\7\0\0\x20\0\0\0\0\0\0\0", 12) + std::string(12, '\0');
    const std::string id3v2 = std::string("ID3\4\0\0\0\0\1\0", 10) + std::string(128, '\0');
    for (const std::string& content : {tagged + id3v1, tagged + ape, tagged + ape + id3v1,
                                       id3v2 + tagged, id3v2 + tagged + id3v1}) {
        const auto length = proven(write(content));
        EXPECT_TRUE(length && length->samples == 441441);
    }
}

TEST_F(FFmpegHeaders, AProvenFileWhosePacketsDoNotDecodePlaysAsLongAsItWasMeasured) {
    std::string content = tagged;
    for (std::size_t i = content.size() / 2; i < content.size(); ++i)
        content[i] = 0x55;
    const std::string path = write(content);
    ASSERT_TRUE(proven(path));
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(ours);
    EXPECT_EQ(ours->size(), 2 * 441441U);
    EXPECT_TRUE(
        std::all_of(ours->end() - 400000, ours->end(), [](auto value) { return value == 0; }));
}

/// Writes a file of one size that takes no space beyond its content.
std::string sparse(const TemporaryFolder& folder, const std::string& content, std::uint64_t size) {
    const std::string path = folder.write("sparse.mp3", content);
    std::filesystem::resize_file(path, size);
    return path;
}

long peakMemory() { // KiB
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(FFmpegHeaders, MoreDamageThanIsReadThroughIsRefusedInLittleMemory) {
    const std::string frames = contentOf(audioFixture(untaggedMP3Recipe())).substr(0, 40000);
    const long before = peakMemory();
    for (const std::string& content : {frames, tagged.substr(0, 40000), frames.substr(0, 418),
                                       contentOf(audioFixture(aacRecipe()))}) {
        const std::string path = sparse(folder, content, 600'000'000);
        service->measure(path);
        if (const auto stream = service->open(path)) {
            std::vector<std::int16_t> values(100000);
            while (stream->read(values) == values.size())
                ;
        }
    }
    EXPECT_FALSE(service->measure(sparse(folder, frames, 600'000'000)));
    EXPECT_LT(peakMemory() - before, 64 * 1024);
}

TEST_F(FFmpegHeaders, AHugeFileIsRefusedSoon) {
    EXPECT_FALSE(service->measure(sparse(folder, "", 1ULL << 40)));
    EXPECT_FALSE(service->measure(sparse(folder, tagged, 1ULL << 40)));
}

TEST_F(FFmpegHeaders, MeasuringEndsInsideAFileWhenItIsNotContinued) {
    AudioRecipe other = untaggedMP3Recipe();
    other.rate = 48000; // the change makes the file be decoded
    std::string content = contentOf(audioFixture(untaggedMP3Recipe()));
    for (int i = 0; i < 6; ++i)
        content += content;
    const std::string path = write(contentOf(audioFixture(other)) + content);
    int asked = 0;
    const auto stopLater = [&] { return ++asked < 20; };
    EXPECT_FALSE(service->measureWhile(path, stopLater));
    EXPECT_LT(asked, 40);
    EXPECT_TRUE(service->measure(path)); // an interrupted measurement is not remembered
}

} // namespace
} // namespace quarner::testing
