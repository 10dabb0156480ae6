// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>

#include "adapters/ffmpeg/EncoderTag.h"
#include "adapters/ffmpeg/MpegSource.h"
#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"
#include "tests/support/AudioFixtures.h"

namespace quarner::testing {
namespace {

class FFmpegHeaders : public Measuring {
protected:
    std::optional<SoundLength> proven(const std::string& path) const {
        const auto file = WindowedFile::open(path);
        return file ? MpegSource(*file).provenLength() : std::nullopt;
    }
    std::string write(const std::string& content) const { return folder.write("a.mp3", content); }

    /// Expects that the header proves nothing, and that the file plays as long as it is measured.
    /// Returns the number of samples.
    std::size_t expectNotProven(const std::string& content) const {
        const std::string path = write(content);
        EXPECT_FALSE(proven(path));
        return decodedAsMeasured(path).size() / 2;
    }
    /// The same for a file that the ffmpeg program plays as long.
    void expectFound(const std::string& content) const {
        const std::size_t samples = expectNotProven(content);
        EXPECT_EQ(2 * samples, decodedByFFmpeg(folder.file("a.mp3")).size());
    }

    /// The tagged file with another number in its tag, at an offset, and the checksum that fits.
    std::string withNumber(std::size_t offset, const std::string& bytes) const {
        constexpr std::size_t checksum = 154; // its offset
        std::string content = tagged;
        content.replace(tag + offset, bytes.size(), bytes);
        unsigned sum = 0; // CRC-16/ARC
        for (std::size_t i = tag - tagInFrame; i < tag + checksum; ++i) {
            sum ^= static_cast<unsigned char>(content[i]);
            for (int bit = 0; bit < 8; ++bit)
                sum = (sum & 1) != 0 ? sum >> 1 ^ 0xa001 : sum >> 1;
        }
        content[tag + checksum] = static_cast<char>(sum >> 8);
        content[tag + checksum + 1] = static_cast<char>(sum & 0xff);
        return content;
    }

    static constexpr std::size_t tagInFrame = 36; // of two channels
    static constexpr std::size_t tagFrame = 417;  // bytes

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
    expectNotProven(content);
}

TEST_F(FFmpegHeaders, ATagBeforeFramesOfAnotherRateIsNotBelieved) {
    AudioRecipe other = untaggedMP3Recipe();
    other.rate = 48000;
    other.samples = 48000 * 11;
    const std::size_t frames = tag - tagInFrame + tagFrame;
    const std::string rest = contentOf(audioFixture(other)).substr(0, tagged.size() - frames);
    ASSERT_EQ(rest.size(), tagged.size() - frames);
    expectNotProven(tagged.substr(0, frames) + rest);
}

TEST_F(FFmpegHeaders, ATagThatLeavesNoSoundIsNotBelieved) {
    constexpr std::size_t framesField = 8;
    constexpr std::size_t bytesField = 12;
    EXPECT_TRUE(proven(write(withNumber(framesField, std::string("\0\0\1\x7f", 4)))));
    EXPECT_FALSE(proven(write(withNumber(bytesField, std::string("\0\0\1\x7f", 4)))));
    EXPECT_GT(expectNotProven(withNumber(framesField, std::string("\0\0\0\1", 4))), 400'000U);
}

TEST_F(FFmpegHeaders, AFileWithARightTagIsAnMP3AlsoWhereItsFramesComeLate) {
    const std::size_t frames = tag - tagInFrame + tagFrame;
    const std::string late =
        tagged.substr(0, frames) + std::string(2'000'000, '\0') + tagged.substr(frames);
    EXPECT_GT(expectNotProven(late), 400'000U);
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
    AudioRecipe other = aacRecipe();
    other.name = "other.flac";
    other.encoder = {"-c:a", "flac"};
    EXPECT_FALSE(service->measure(sparse(folder, contentOf(audioFixture(other)), 1ULL << 40)));
}

TEST_F(FFmpegHeaders, ATableOfMorePacketsThanADemuxerIsToHoldIsRefused) {
    AudioRecipe recipe = aacRecipe();
    recipe.name = "packets.mov";
    recipe.encoder = {"-c:a", "pcm_s16le"}; // each sample is a packet
    for (const std::uint64_t packets : {999'999U, 1'000'001U}) {
        recipe.samples = packets;
        const std::string path = write(PatchedM4A(recipe).removeEdit().content);
        EXPECT_EQ(service->measure(path).has_value(), packets < 1'000'000);
    }
}

TEST_F(FFmpegHeaders, AnM4AWhoseTablesAreOnlyOfItsFirstPartPlaysToItsEnd) {
    AudioRecipe recipe = aacRecipe();
    recipe.encoder.insert(recipe.encoder.end(),
                          {"-movflags", "frag_keyframe", "-frag_duration", "2000000"});
    const std::string path = audioFixture(recipe);
    const auto length = service->measure(path);
    ASSERT_TRUE(length);
    EXPECT_EQ(2 * length->discSamples, decodedByFFmpeg(path).size());
    EXPECT_GE(length->discSamples, recipe.samples);
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
