// SPDX-License-Identifier: LGPL-2.1-or-later
#include <string>

#include "adapters/ffmpeg/FileTags.h"
#include "tests/ffmpeg/Measuring.h"
#include "tests/support/AudioFixtures.h"

namespace quarner::testing {
namespace {

using namespace std::string_literals;

AudioRecipe tagged(AudioRecipe recipe, const std::string& name) {
    recipe.name = name;
    for (const char* option : {"-metadata", "title=Grüße", "-metadata", "artist=Die 東京 Band",
                               "-metadata", "album=Lieder", "-metadata", "track=7/12"})
        recipe.encoder.emplace_back(option);
    return recipe;
}

const MediaTags expected = {
    .title = "Grüße", .artist = "Die 東京 Band", .album = "Lieder", .track = 7};

std::string bigEndian(std::size_t value, int bits) {
    std::string text;
    for (int i = 3; i >= 0; --i)
        text += static_cast<char>(value >> i * bits & ((1U << bits) - 1));
    return text;
}

/// A frame of ID3 2.3; with 7 bits for each byte of the size, of ID3 2.4.
std::string frame(const std::string& name, const std::string& content, int bits = 8) {
    return name + bigEndian(content.size(), bits) + "\0\0"s + content;
}

std::string tag(char version, char flags, const std::string& frames) {
    return "ID3"s + version + '\0' + flags + bigEndian(frames.size(), 7) + frames;
}

class FFmpegTags : public Measuring {
protected:
    MediaTags tagsOf(const std::string& content) const {
        return readTags(folder.write("tagged.mp3", content));
    }
    const std::string song = contentOf(audioFixture(untaggedMP3Recipe()));
};

TEST_F(FFmpegTags, AreReadFromEveryVersionThatFFmpegWrites) {
    AudioRecipe old = tagged(mp3Recipe(), "tagged-v3.mp3");
    old.encoder.insert(old.encoder.end(), {"-id3v2_version", "3"});
    EXPECT_EQ(readTags(audioFixture(old)), expected);
    EXPECT_EQ(readTags(audioFixture(tagged(mp3Recipe(), "tagged-v4.mp3"))), expected);
    EXPECT_EQ(readTags(audioFixture(tagged(aacRecipe(), "tagged.m4a"))), expected);
    EXPECT_EQ(readTags(audioFixture(tagged(alacRecipe(), "tagged-alac.m4a"))), expected);
    EXPECT_EQ(makeFFmpegMediaService(service)->tags(audioFixture(old)), expected);
}

TEST_F(FFmpegTags, AreReadBehindAPicture) {
    const std::string picture = frame("APIC", "\0image/png\0\3\0"s + std::string(3U << 20, 'x'));
    const std::string title = frame("TIT2", "\0One"s);
    EXPECT_EQ(tagsOf(tag(3, 0, picture + title) + song).title, "One");
    const std::string safe =
        frame("APIC", std::string(200'000, 'x'), 7) + frame("TIT2", "\3Zwölf"s, 7);
    EXPECT_EQ(tagsOf(tag(4, 0, safe) + song).title, "Zwölf");
    EXPECT_EQ(tagsOf(tag(4, 0, frame("APIC", std::string(200'000, 'x')) + title) + song).title,
              "One")
        << "with sizes as in version 2.3";
}

TEST_F(FFmpegTags, AreReadFromTheOldestVersionsToo) {
    const MediaTags v22 = tagsOf(tag(2, 0,
                                     "TT2\0\0\4\0OneTRK\0\0\2\0"
                                     "3"s) +
                                 song);
    EXPECT_EQ(v22.title, "One");
    EXPECT_EQ(v22.track, 3U);
    std::string v1 = "TAG" + "Caf\xE9"s + std::string(26, '\0') + "Artist" + std::string(24, ' ') +
                     "Album" + std::string(25, '\0') + "2001" + std::string(28, '\0') + "\0\5\1"s;
    v1.resize(128);
    const MediaTags old = tagsOf(song + v1);
    EXPECT_EQ(old.title, "Café");
    EXPECT_EQ(old.artist, "Artist");
    EXPECT_EQ(old.album, "Album");
}

TEST_F(FFmpegTags, AreEmptyWhereThereAreNone) {
    EXPECT_EQ(tagsOf(song), MediaTags());
    EXPECT_EQ(readTags(folder.file("none.mp3")), MediaTags());
    EXPECT_EQ(readTags(folder.path().string()), MediaTags());
    EXPECT_EQ(tagsOf("no sound"), MediaTags());
    EXPECT_EQ(tagsOf(""), MediaTags());
}

TEST_F(FFmpegTags, OfDamageAreSoonRead) {
    EXPECT_EQ(tagsOf(tag(3, 0, frame("TIT2", "\0One"s)).substr(0, 15)), MediaTags());
    EXPECT_EQ(tagsOf("ID3\3\0\0\x7F\x7F\x7F\x7FTIT2\xFF\xFF\xFF\xFF"s + song).title, "");
    std::string manyNotes;
    for (int i = 0; i < 20'000; ++i)
        manyNotes += frame("TXXX", "\0" + std::to_string(i) + "\0x"s);
    manyNotes += frame("TIT2", "\0One"s);
    EXPECT_EQ(tagsOf(tag(3, 0, manyNotes) + song).title, "") << "too far behind";
    EXPECT_EQ(tagsOf(tag(3, '\x80', manyNotes) + song).title, "");
}

TEST_F(FFmpegTags, CanBeShown) {
    EXPECT_EQ(shownTagText("  a\tb\n "), "a b");
    EXPECT_EQ(shownTagText("gr\xFC\xDF"
                           "e"),
              "grüße");
    EXPECT_EQ(shownTagText("a\xC2\x9B"
                           "b\x7F"
                           "c"),
              "a b c");
    EXPECT_EQ(shownTagText("🎵"), "🎵");
    EXPECT_EQ(shownTagText(""), "");
    const std::string longText = shownTagText(std::string(2'000, 'x') + "🎵");
    EXPECT_LE(longText.size(), MediaTags::mostBytes);
    EXPECT_GE(longText.size(), MediaTags::mostBytes - 4);
}

} // namespace
} // namespace quarner::testing
