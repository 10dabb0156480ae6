// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "quarner/platform/Platform.h"
#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/KeptLog.h"

namespace quarner::testing {
namespace {

constexpr std::size_t wholeFile = 2 * 441441;     // values
constexpr std::size_t codecMemory = 2 * 3 * 2048; // values that damage behind it may still change

class FFmpegDamage : public Measuring {
protected:
    /// Writes the content under a name and returns its path.
    std::string write(const std::string& content, const std::string& name = "a.mp3") const {
        return folder.write(name, content);
    }

    /// Expects the sound of a file damaged between two shares of its bytes to be where it was.
    void expectPlaceKept(const std::string& whole, const std::string& damaged, double from,
                         double to) const {
        const std::vector<std::int16_t> good = decodedAsMeasured(whole);
        const std::vector<std::int16_t> bad = decodedAsMeasured(damaged);
        ASSERT_EQ(bad.size(), good.size());
        const auto before = static_cast<std::size_t>(from * static_cast<double>(good.size()));
        const auto after = static_cast<std::size_t>(to * static_cast<double>(good.size()));
        const auto middle = static_cast<std::ptrdiff_t>(before - codecMemory);
        EXPECT_EQ(largestDifference({bad.begin(), bad.begin() + middle}, good), 0);
        EXPECT_GT(largestDifference(bad, good), 1000);
        EXPECT_LE(largestDifference(bad, good, after + codecMemory), 1);
    }
};

/// The content with the bytes between two shares of it overwritten.
std::string overwritten(std::string content, double from, double to) {
    const auto size = static_cast<double>(content.size());
    for (auto i = static_cast<std::size_t>(from * size); i < static_cast<std::size_t>(to * size);
         ++i)
        content[i] = 0x55;
    return content;
}

TEST_F(FFmpegDamage, ATruncatedMP3IsAsLongAsWhatIsLeft) {
    const std::string content = contentOf(audioFixture(mp3Recipe()));
    const std::string path = write(content.substr(0, content.size() * 6 / 10));
    const std::vector<std::int16_t> ours = decodedAsMeasured(path);
    EXPECT_LT(ours.size(), wholeFile * 65 / 100);
    EXPECT_GT(ours.size(), wholeFile * 55 / 100);
    const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
    EXPECT_EQ(ours.size(), theirs.size());
    EXPECT_LE(largestDifference(ours, theirs), 1);
}

TEST_F(FFmpegDamage, AnMP3ThatHoldsMoreThanItsTagPromisesPlaysToItsEnd) {
    AudioRecipe longer = untaggedMP3Recipe();
    longer.samples = 300000;
    const std::string path =
        write(contentOf(audioFixture(mp3Recipe())) + contentOf(audioFixture(longer)));
    const std::vector<std::int16_t> ours = decodedAsMeasured(path);
    EXPECT_GT(ours.size(), wholeFile + 2 * 300000);
    const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
    EXPECT_EQ(ours.size(), theirs.size());
    EXPECT_LE(largestDifference(ours, theirs), 1);
}

TEST_F(FFmpegDamage, TwoTaggedMP3sInOneFilePlayAsTheFFmpegProgramPlaysThem) {
    const std::string content = contentOf(audioFixture(mp3Recipe()));
    const std::string path = write(content + content);
    const std::vector<std::int16_t> ours = decodedAsMeasured(path);
    EXPECT_GT(ours.size(), 2 * wholeFile - 8 * 1152);
    const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
    EXPECT_EQ(ours.size(), theirs.size());
    EXPECT_LE(largestDifference(ours, theirs), 1);
}

TEST_F(FFmpegDamage, BytesAfterTheLastFrameAreNoSound) {
    const std::string content = contentOf(audioFixture(mp3Recipe()));
    const std::string tag = "TAG" + std::string(125, ' ');
    const std::string apeTag = "APETAGEX" + std::string(500, 'x');
    for (const std::string& end : {std::string(5000, '\0'), std::string("the end"), tag, apeTag})
        EXPECT_EQ(decodedAsMeasured(write(content + end)).size(), wholeFile) << end;
}

TEST_F(FFmpegDamage, AnMP3WhoseBeginIsMissingPlaysAsTheFFmpegProgramPlaysIt) {
    const std::string whole = contentOf(audioFixture(untaggedMP3Recipe()));
    for (const std::size_t from : {500U, 4000U, 20'000U}) {
        const std::string path = write(whole.substr(whole.find("\xff\xfb", from)));
        const std::vector<std::int16_t> ours = decodedAsMeasured(path);
        const std::vector<std::int16_t> theirs = decodedByFFmpeg(path);
        EXPECT_EQ(ours.size(), theirs.size()) << from;
        EXPECT_LE(largestDifference(ours, theirs), 1) << from;
    }
}

/// The content with the first frames of an MP3 file made undecodable, their headers aside.
std::string withoutSound(std::string content, std::size_t bytes) {
    constexpr std::size_t header = 4;
    for (std::size_t at = 0, last = 0; at < bytes; ++at) {
        last = content.compare(at, 2, "\xff\xfb") == 0 ? at : last;
        if (at >= last + header)
            content[at] = '\xfe'; // more values than a frame can have
    }
    return content;
}

TEST_F(FFmpegDamage, FramesOfAnMP3WithoutAnySoundAreRefused) {
    const std::string content = contentOf(audioFixture(untaggedMP3Recipe()));
    EXPECT_FALSE(service->measure(write(withoutSound(content, content.size()))));
}

TEST_F(FFmpegDamage, AFirstFrameOfAnMP3ThatDoesNotDecodeIsNotHeard) {
    const std::string content = contentOf(audioFixture(untaggedMP3Recipe()));
    const std::size_t whole = decodedAsMeasured(write(content)).size();
    constexpr std::size_t frame = 2 * 1152; // values
    EXPECT_EQ(decodedAsMeasured(write(withoutSound(content, 400))).size(), whole - frame);
}

TEST_F(FFmpegDamage, MP3FramesThatCannotBeFoundKeepTheirPlace) {
    const std::string whole = audioFixture(untaggedMP3Recipe());
    expectPlaceKept(whole, write(overwritten(contentOf(whole), 0.45, 0.5)), 0.45, 0.5);
}

TEST_F(FFmpegDamage, ADamagedMP3WithATagIsStillTrimmedAtItsEnd) {
    const std::string whole = audioFixture(mp3Recipe());
    expectPlaceKept(whole, write(overwritten(contentOf(whole), 0.45, 0.5)), 0.45, 0.5);
}

TEST_F(FFmpegDamage, DamageInsideTheFramesOfAnMP3KeepsItsPlace) {
    const std::string whole = audioFixture(untaggedMP3Recipe());
    std::string content = contentOf(whole);
    for (std::size_t i = content.size() * 45 / 100; i < content.size() / 2; i += 37)
        content[i] = static_cast<char>(content[i] ^ static_cast<char>(1 + i % 200));
    expectPlaceKept(whole, write(content), 0.45, 0.5);
}

TEST_F(FFmpegDamage, ADamagedPacketOfAnM4AKeepsItsPlace) {
    AudioRecipe aac = aacRecipe();
    // Without noise substitution: its random numbers depend on every packet before.
    aac.encoder.insert(aac.encoder.end(), {"-aac_pns", "0"});
    for (const AudioRecipe& recipe : {aac, alacRecipe()}) {
        const std::string whole = audioFixture(recipe);
        const std::string damaged = write(overwritten(contentOf(whole), 0.45, 0.5), "a.m4a");
        expectPlaceKept(whole, damaged, 0.44, 0.51);
    }
}

TEST_F(FFmpegDamage, AnM4AWhoseEndIsMissingIsAsLongAsWhatIsLeft) {
    AudioRecipe recipe = aacRecipe();
    recipe.name = "index-first.m4a";
    recipe.encoder.insert(recipe.encoder.end(), {"-movflags", "+faststart"});
    const std::string content = contentOf(audioFixture(recipe));
    const std::string path = write(content.substr(0, content.size() * 6 / 10), "a.m4a");
    const std::vector<std::int16_t> ours = decodedAsMeasured(path);
    EXPECT_LT(ours.size(), wholeFile * 65 / 100);
    EXPECT_GT(ours.size(), wholeFile * 55 / 100);
    EXPECT_LE(largestDifference(ours, decodedByFFmpeg(path)), 1);
}

TEST_F(FFmpegDamage, AnM4AWhoseTableSaysMoreThanItsPacketsDecodeToPlaysWhatTheyDecodeTo) {
    PatchedM4A file(alacRecipe());
    file.set("stts", 16, bigEndian(5120)); // samples to a packet, of 4096
    file.set("mdhd", 20, bigEndian(1048576)).removeEdit();
    const std::vector<std::int16_t> ours = decodedAsMeasured(write(file.content, "a.m4a"));
    const std::vector<std::int16_t> whole = decodedByFFmpeg(audioFixture(alacRecipe()));
    EXPECT_EQ(ours, whole);
}

TEST_F(FFmpegDamage, TablesOfAnM4AThatDoNotAgreeProveNothing) {
    struct Number {
        const char* box;
        std::size_t offset; // after the box's name
        std::uint32_t value;
        std::size_t samples; // that remain
    };
    constexpr std::size_t packet = 4096;
    constexpr std::size_t all = 441441;
    constexpr Number longerLastPacket = {"stts", 24, 100'000, all};
    constexpr Number moreTimesThanPackets = {"stts", 12, 150, all};
    constexpr Number fewerPacketsInAChunk = {"stsc", 28, 10, (79 + 10) * packet}; // of 29
    for (const Number& number : {longerLastPacket, moreTimesThanPackets, fewerPacketsInAChunk}) {
        PatchedM4A file(alacRecipe());
        file.set(number.box, number.offset, bigEndian(number.value)).removeEdit();
        EXPECT_EQ(decodedAsMeasured(write(file.content, "a.m4a")).size(), 2 * number.samples)
            << number.box << ' ' << number.offset;
    }
}

TEST_F(FFmpegDamage, AFileThatShrinksWhileItIsReadEndsEarlyOrFails) {
    const std::string content = contentOf(audioFixture(alacRecipe()));
    const std::string path = write(content, "a.m4a");
    const auto stream = service->open(path);
    ASSERT_NE(stream, nullptr);
    std::vector<std::int16_t> values(wholeFile);
    ASSERT_EQ(stream->read(std::span(values).first(20000)), 20000U);
    std::filesystem::resize_file(path, content.size() / 2);
    const auto rest = stream->read(values);
    EXPECT_TRUE(!rest || *rest < wholeFile - 20000);
}

/// What a service's work writes to the platform's log; nothing goes to the standard error stream.
std::vector<std::string> loggedBy(const std::function<void()>& work) {
    const auto log = std::make_shared<KeptLog>();
    Platform platform;
    platform.log = log;
    installPlatform(platform);
    ::testing::internal::CaptureStderr();
    work();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    installPlatform({});
    return log->lines();
}

TEST_F(FFmpegDamage, MeasuringLogsNothing) {
    const std::string mp3 = contentOf(audioFixture(untaggedMP3Recipe()));
    const std::string alac = contentOf(audioFixture(alacRecipe()));
    AudioRecipe bare = aacRecipe();
    bare.name = "bare.aac"; // which can be measured only by decoding
    const std::string aac = contentOf(audioFixture(bare));
    for (const std::string& path : {write(overwritten(mp3, 0.45, 0.5), "damaged.mp3"),
                                    write(overwritten(aac, 0.45, 0.5), "damaged.aac"),
                                    write(alac.substr(0, alac.size() / 2), "cut.m4a")})
        EXPECT_THAT(loggedBy([&] { service->measure(path); }), ::testing::IsEmpty()) << path;
}

TEST_F(FFmpegDamage, WhatIsWrongWithAFileThatIsDecodedGoesToTheLogUnderItsName) {
    const std::string whole = audioFixture(untaggedMP3Recipe());
    const std::string path = write(overwritten(contentOf(whole), 0.45, 0.5), "damaged.mp3");
    const std::vector<std::string> lines = loggedBy([&] { EXPECT_TRUE(decoded(*service, path)); });
    ASSERT_FALSE(lines.empty());
    for (const std::string& line : lines) {
        EXPECT_EQ(line.find(path), 0U) << line;
        EXPECT_EQ(line.find('\n'), std::string::npos) << line;
    }
}

} // namespace
} // namespace quarner::testing
