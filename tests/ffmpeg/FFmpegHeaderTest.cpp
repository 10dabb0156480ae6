// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>

#include "adapters/ffmpeg/EncoderTag.h"
#include "adapters/ffmpeg/MpegSource.h"
#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/Program.h"

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
        std::string content = tagged;
        content.replace(tag + offset, bytes.size(), bytes);
        return sealed(content);
    }

    /// Frames behind the tag, which says how many bytes they are, and how many frames.
    std::string tagBefore(const std::string& frames, std::size_t count) const {
        std::string content = tagged.substr(0, tag - tagInFrame + tagFrame) + frames;
        content.replace(tag + framesField, 4, bigEndian(static_cast<std::uint32_t>(count)));
        content.replace(tag + bytesField, 4,
                        bigEndian(static_cast<std::uint32_t>(tagFrame + frames.size())));
        return sealed(content);
    }

    /// The content with the checksum that fits its tag.
    std::string sealed(std::string content) const {
        constexpr std::size_t checksum = 154; // its offset
        const std::size_t start = std::min(content.find("Info"), content.find("Xing"));
        unsigned sum = 0; // CRC-16/ARC
        for (std::size_t i = start - tagInFrame; i < start + checksum; ++i) {
            sum ^= static_cast<unsigned char>(content[i]);
            for (int bit = 0; bit < 8; ++bit)
                sum = (sum & 1) != 0 ? sum >> 1 ^ 0xa001 : sum >> 1;
        }
        content[start + checksum] = static_cast<char>(sum >> 8);
        content[start + checksum + 1] = static_cast<char>(sum & 0xff);
        return content;
    }

    static constexpr std::size_t framesField = 8;
    static constexpr std::size_t bytesField = 12;
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

constexpr std::uint64_t usualSize = 3'400'000; // bytes of a song
constexpr std::uint64_t hardly = usualSize / 50;

TEST_F(FFmpegHeaders, AProvenFileIsHardlyRead) {
    for (AudioRecipe recipe : {mp3Recipe(), variableMP3Recipe()}) {
        recipe.samples = 44100 * 60;
        const auto file = WindowedFile::open(audioFixture(recipe));
        ASSERT_NE(file, nullptr);
        ASSERT_TRUE(MpegSource(*file).provenLength());
        EXPECT_LE(file->bytesRead(), hardly);
    }
}

TEST_F(FFmpegHeaders, AnM4AIsHardlyRead) {
    AudioRecipe recipe = aacRecipe();
    recipe.samples = 44100 * 212; // the size of its tables counts
    for (const bool isIndexFirst : {false, true}) {
        if (isIndexFirst)
            recipe.encoder.insert(recipe.encoder.end(), {"-movflags", "+faststart"});
        const std::string path = audioFixture(recipe);
        ASSERT_GT(std::filesystem::file_size(path), usualSize * 98 / 100);
        const std::uint64_t before = bytesReadSoFar();
        EXPECT_TRUE(service->measure(path));
        EXPECT_LE(bytesReadSoFar() - before, hardly);
    }
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

/// Frames of one second and a little.
std::string fewFrames(std::uint32_t rate) {
    AudioRecipe recipe = untaggedMP3Recipe();
    recipe.rate = rate;
    recipe.samples = rate;
    return contentOf(audioFixture(recipe));
}

TEST_F(FFmpegHeaders, ATagBeforeFramesWhoseRateChangesIsNotBelieved) {
    AudioRecipe recipe = untaggedMP3Recipe();
    const std::string frames = contentOf(audioFixture(recipe));
    recipe.rate = 32000;
    const std::string other = contentOf(audioFixture(recipe));
    const std::size_t same = proven(write(tagBefore(frames, 384))) ? 384 : 385;
    ASSERT_TRUE(proven(write(tagBefore(frames, same))));
    for (const std::string& joined :
         {frames + other, frames + fewFrames(32000), frames + fewFrames(48000) + frames})
        for (const std::size_t count : {same, 2 * same, 3 * same})
            expectNotProven(tagBefore(joined, count));
}

/// Returns the path of two files joined by the ffmpeg program, which copies their frames.
std::string joinedByFFmpeg(const TemporaryFolder& folder, const std::string& one,
                           const std::string& other) {
    const std::string list = folder.write("list.txt", "file '" + one + "'\nfile '" + other + "'\n");
    const std::string path = folder.file("joined.mp3");
    const ProgramResult result = runProgram({"ffmpeg", "-v", "error", "-y", "-f", "concat", "-safe",
                                             "0", "-i", list, "-c", "copy", path});
    EXPECT_EQ(result.status, 0) << result.output;
    return path;
}

TEST_F(FFmpegHeaders, FilesOfTwoRatesJoinedByAProgramThatCopiesFramesArePlayedToTheirEnd) {
    const auto threeSeconds = [](std::uint32_t rate) {
        AudioRecipe recipe = mp3Recipe();
        recipe.rate = rate;
        recipe.samples = 3 * rate;
        return audioFixture(recipe);
    };
    for (const std::uint32_t one : {32000U, 44100U, 48000U})
        for (const std::uint32_t other : {32000U, 44100U, 48000U}) {
            const std::string path = joinedByFFmpeg(folder, threeSeconds(one), threeSeconds(other));
            ASSERT_NE(contentOf(path).find("Lavf"), std::string::npos);
            EXPECT_TRUE(one == other || !proven(path));
            const auto length = service->measure(path);
            const auto ours = decoded(*service, path);
            ASSERT_TRUE(length && ours);
            EXPECT_EQ(ours->size(), 2 * length->discSamples);
            EXPECT_GE(length->discSamples, 6 * 44100U) << one << " and " << other;
            EXPECT_LT(length->discSamples, 6 * 44100U + 6 * 1152) << one << " and " << other;
        }
}

TEST_F(FFmpegHeaders, ATagWithANumberOfFramesThatCannotBeRightIsNotBelieved) {
    for (const std::uint32_t frames : {200U, 383U, 386U, 3840U, 3'000'000'000U, 0xffffffffU})
        expectNotProven(withNumber(framesField, bigEndian(frames)));
    AudioRecipe variable = variableMP3Recipe();
    variable.samples = 44100 * 20;
    const std::string content = contentOf(audioFixture(variable));
    const std::size_t frames = content.find("Xing") + framesField;
    for (const std::uint32_t count : {100U, 3840U, 0xffffffffU}) {
        std::string lying = content;
        expectNotProven(sealed(lying.replace(frames, 4, bigEndian(count))));
    }
}

TEST_F(FFmpegHeaders, ATagThatLeavesNoSoundIsNotBelieved) {
    EXPECT_TRUE(proven(write(sealed(tagged))));
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
    const auto headerAt = [&](std::size_t offset) {
        const std::string bytes = content.substr(offset, MpegHeader::size);
        return mpegHeader({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    };
    std::size_t at = tag - tagInFrame;
    while (at < content.size()) {
        const std::size_t size = headerAt(at).value().frameBytes;
        if (at > content.size() / 2)
            std::fill_n(content.begin() + std::ptrdiff_t(at + MpegHeader::size),
                        size - MpegHeader::size, '\x55');
        at += size;
    }
    ASSERT_EQ(content.size(), tagged.size());
    const std::string path = write(content);
    ASSERT_TRUE(proven(path));
    const auto ours = decoded(*service, path);
    ASSERT_TRUE(ours);
    EXPECT_EQ(ours->size(), 2 * 441441U);
}

TEST_F(FFmpegHeaders, ATagBeforeBytesThatAreNoFramesIsNotBelieved) {
    for (const double from : {0.1, 0.5, 0.87}) {
        std::string content = tagged;
        const auto first = static_cast<std::ptrdiff_t>(from * static_cast<double>(content.size()));
        std::fill_n(content.begin() + first, content.size() / 8, '\x55');
        expectNotProven(content);
    }
}

/// Writes a file of one size that takes no space beyond its content.
std::string sparse(const TemporaryFolder& folder, const std::string& content, std::uint64_t size) {
    const std::string path = folder.write("sparse.mp3", content);
    std::filesystem::resize_file(path, size);
    return path;
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
