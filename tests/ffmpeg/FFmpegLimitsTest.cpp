// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "tests/ffmpeg/Measuring.h"
#include "tests/ffmpeg/PatchedM4A.h"

namespace quarner::testing {
namespace {

constexpr std::uint32_t tooMany = 16'000'000;

class FFmpegLimits : public Measuring {
protected:
    bool isAccepted(const std::string& content) const {
        return service->measure(folder.write("a.m4a", content)).has_value();
    }
    bool isAcceptedWithNote(const std::string& note) const {
        return isAccepted(PatchedM4A(aacRecipe()).addNotes(note).content);
    }
    /// The file with another box at the end of its sample tables.
    bool isAcceptedWithTable(const std::string& box) const {
        return isAccepted(
            PatchedM4A(aacRecipe()).append({"moov", "trak", "mdia", "minf", "stbl"}, box).content);
    }
};

/// A table of packets of one size.
std::string sizes(const std::string& name) {
    return mp4Box(name, zeros(4) + bigEndian(4) + bigEndian(tooMany));
}

TEST_F(FFmpegLimits, ATableOfTooManyPacketsIsFoundInAnyBox) {
    for (const char* around : {"udta", "edts", "wave", "meta"})
        EXPECT_FALSE(isAcceptedWithTable(mp4Box(around, sizes("stsz")))) << around;
    EXPECT_FALSE(isAcceptedWithTable(sizes("stz2")));
    EXPECT_TRUE(isAcceptedWithTable(mp4Box("udta", mp4Box("abcd", zeros(12)))));
}

TEST_F(FFmpegLimits, ATableBehindASizeThatCannotBeRightIsFound) {
    std::string table = sizes("stsz");
    table.replace(0, 4, "\x7f\xff\xff\xff");
    EXPECT_FALSE(isAcceptedWithTable(mp4Box("udta", table)));
    std::string wide =
        mp4Box("stsz", bigEndian(0) + bigEndian(28) + zeros(4) + bigEndian(4) + bigEndian(tooMany));
    wide.replace(0, 4, bigEndian(1));
    EXPECT_FALSE(isAcceptedWithTable(wide));
}

TEST_F(FFmpegLimits, AFragmentOfTooManyPacketsIsRefused) {
    const std::string run = mp4Box("trun", zeros(4) + bigEndian(tooMany));
    const std::string content = PatchedM4A(aacRecipe()).content;
    EXPECT_FALSE(isAccepted(content + mp4Box("moof", mp4Box("udta", mp4Box("traf", run)))));
    EXPECT_FALSE(isAccepted(content + run));
    EXPECT_TRUE(isAccepted(content + mp4Box("mdat", run)));
}

TEST_F(FFmpegLimits, ANumberOfEntriesThatTheFileCannotHoldDoesNotCount) {
    for (const char* name : {"elst", "dref", "stss"}) {
        const std::string table = mp4Box(name, zeros(4) + bigEndian(0xeb5f1bcb) + zeros(48));
        const std::string content = PatchedM4A(aacRecipe()).content;
        EXPECT_TRUE(isAccepted(content + mp4Box("abcd", table))) << name;
    }
}

TEST_F(FFmpegLimits, ChunksOfTooManySamplesAreRefused) {
    constexpr std::size_t samplesOfFirstChunk = 16;
    EXPECT_FALSE(isAccepted(PatchedM4A(aacRecipe())
                                .set("stsc", samplesOfFirstChunk, bigEndian(4'000'000'000))
                                .content));
}

TEST_F(FFmpegLimits, ACompressedMovieIsRefused) {
    EXPECT_FALSE(
        isAccepted(PatchedM4A(aacRecipe()).append({"moov"}, mp4Box("cmov", zeros(8))).content));
}

TEST_F(FFmpegLimits, TextAndPicturesMayContainTheNameOfATable) {
    const std::string text = "a trunk, and stsz and helst, stts";
    EXPECT_TRUE(
        isAcceptedWithNote(mp4Box("\xa9lyr", mp4Box("data", bigEndian(1) + zeros(4) + text))));
    EXPECT_TRUE(isAcceptedWithNote(
        mp4Box("covr", mp4Box("data", bigEndian(13) + zeros(4) + sizes("stsz")))));
    EXPECT_FALSE(isAcceptedWithNote(sizes("stsz")));
}

TEST_F(FFmpegLimits, MoreNotesThanAnyoneWritesAreRefused) {
    std::string notes;
    const std::string note =
        mp4Box("----", mp4Box("mean", zeros(4) + "a") + mp4Box("name", zeros(4) + "b"));
    for (int i = 0; i < 1000; ++i)
        notes += note;
    EXPECT_TRUE(isAcceptedWithNote(notes));
    std::string many;
    for (int i = 0; i < 21; ++i)
        many += notes;
    EXPECT_FALSE(isAcceptedWithNote(many));
}

TEST_F(FFmpegLimits, TheCommentsOfAFLACFileAreNotRead) {
    constexpr std::size_t firstBlock = 42; // what the decoder has to know ends here
    constexpr std::uint32_t size = 8'000'000;
    const AudioRecipe recipe = {"flac.flac", {}, 48000, 2, 100000};
    std::string content = contentOf(audioFixture(recipe));
    std::string comments = zeros(4) + bigEndian(0);
    for (std::uint32_t i = 0; comments.size() < size; ++i)
        comments += std::string("\x08\0\0\0a", 5) + std::to_string(100'000 + i) + "=";
    comments.resize(size);
    content.insert(firstBlock, bigEndian(0x04000000 | size) + comments);
    const std::string path = folder.write("a.mp3", content);
    const std::uint64_t before = bytesReadSoFar();
    const auto length = service->measure(path);
    EXPECT_LT(bytesReadSoFar() - before, size);
    ASSERT_TRUE(length);
    EXPECT_EQ(length->sourceSamples, recipe.samples);
}

TEST_F(FFmpegLimits, AFormatWithTablesOfItsOwnIsNotOpened) {
    constexpr std::uint32_t entries = 3'000'000; // of a table of frames
    const auto little = [](std::uint32_t value) {
        const std::string bytes = bigEndian(value);
        return std::string(bytes.rbegin(), bytes.rend());
    };
    std::string content = "MAC " + little(3990) + little(52) + little(24) + little(4 * entries) +
                          zeros(4) + little(10 * entries) + zeros(24);
    content += little(2000) + little(73728) + little(73728) + little(entries) +
               std::string("\x10\0\2\0", 4) + little(44100) + std::string(4 * entries, '\1');
    const long before = peakMemory();
    EXPECT_FALSE(service->measure(folder.write("a.mp3", content)));
    EXPECT_LT(peakMemory() - before, 32 * 1024);
}

} // namespace
} // namespace quarner::testing
