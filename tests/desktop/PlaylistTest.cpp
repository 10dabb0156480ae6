// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <quarner/playlist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <random>
#include <string>

#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class Playlists : public ::testing::Test {
protected:
    std::optional<std::vector<std::string>> read(const std::string& name,
                                                 const std::string& content) const {
        return readPlaylist(folder.write(name, content));
    }
    std::string in(const std::string& name) const { return folder.file(name); }

    const TemporaryFolder folder;
};

TEST_F(Playlists, AreKnownByTheirExtension) {
    EXPECT_TRUE(isPlaylist("/a.m3u"));
    EXPECT_TRUE(isPlaylist("b.M3U8"));
    EXPECT_TRUE(isPlaylist("/x.y/c.pls"));
    EXPECT_TRUE(isPlaylist("d.xspf"));
    EXPECT_FALSE(isPlaylist("e.mp3"));
    EXPECT_FALSE(isPlaylist("/x.m3u/f"));
    EXPECT_FALSE(isPlaylist("m3u"));
    EXPECT_FALSE(isPlaylist(""));
}

TEST_F(Playlists, AnM3UListsItsFilesInOrder) {
    EXPECT_THAT(read("a.m3u", "#EXTM3U\r\n#EXTINF:5,Two\r\nsub/two.mp3\r\n\r\n /m/one.mp3 \r\n"
                              "file:///m/with%20space.mp3\nhttp://host/stream.mp3\nlast.mp3"),
                Optional(ElementsAre(in("sub/two.mp3"), "/m/one.mp3", "/m/with space.mp3",
                                     "http://host/stream.mp3", in("last.mp3"))));
    EXPECT_THAT(read("b.m3u8", "\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F"
                               "e.mp3\n"),
                Optional(ElementsAre(in("gr\xC3\xBC\xC3\x9F"
                                        "e.mp3"))));
    EXPECT_THAT(read("c.m3u", ""), Optional(IsEmpty()));
    EXPECT_THAT(read("d.pls", "[playlist]\nFile2 = b.mp3\nFile1=a.mp3\n"),
                Optional(ElementsAre(in("a.mp3"), in("b.mp3"))));
}

TEST_F(Playlists, AFileOfAnotherMachineIsNoneOfThisOne) {
    EXPECT_THAT(read("a.m3u", "file://server/share/x.mp3\nfile://localhost/m/y.mp3\n"),
                Optional(ElementsAre("file://server/share/x.mp3", "/m/y.mp3")));
}

TEST_F(Playlists, NoneHoldsAByteThatNoPathCanHold) {
    for (const char* const name : {"a.m3u", "b.pls", "c.xspf"})
        EXPECT_EQ(read(name, std::string("[playlist]\nFile1=a\0.mp3\n", 24)), std::nullopt);
}

TEST_F(Playlists, ARelativePlaylistHasRelativeEntries) {
    EXPECT_EQ(readPlaylist("none.m3u"), std::nullopt);
    EXPECT_THAT(read("a.m3u", "../up.mp3\n"), Optional(ElementsAre(in("../up.mp3"))));
}

TEST_F(Playlists, ANameThatIsMeantOtherwiseIsFound) {
    folder.write("gr\xC3\xBC\xC3\x9F"
                 "e.mp3",
                 "");
    mkdir(in("sub").c_str(), 0700);
    folder.write("sub/a.mp3", "");
    EXPECT_THAT(read("a.m3u", "gr\xFC\xDF"
                              "e.mp3\nsub\\a.mp3\nsub\\none.mp3\n"),
                Optional(ElementsAre(in("gr\xC3\xBC\xC3\x9F"
                                        "e.mp3"),
                                     in("sub/a.mp3"), in("sub\\none.mp3"))));
}

TEST_F(Playlists, APLSHasTheOrderOfItsNumbers) {
    EXPECT_THAT(read("a.pls",
                     "[playlist]\nNumberOfEntries=3\nFile10=ten.mp3\nTitle2=T\n"
                     "file2=file://localhost/m/two.mp3\nFile1= one.mp3\nFileX=x\nFile3=\n"),
                Optional(ElementsAre(in("one.mp3"), "/m/two.mp3", in("ten.mp3"))));
    EXPECT_EQ(read("b.pls", "File1=a.mp3\n"), std::nullopt);
}

TEST_F(Playlists, AnXSPFHasTheFirstLocationOfEachTrack) {
    EXPECT_THAT(read("a.xspf", "<?xml version=\"1.0\"?><playlist xmlns=\"http://xspf.org/ns/0/\">"
                               "<location>http://list</location><trackList>"
                               "<track><title>T</title><location> a%20b&amp;c.mp3 </location>"
                               "<location>other.mp3</location></track>"
                               "<track><location><![CDATA[file:///m/d.mp3]]></location></track>"
                               "<track><title>none</title></track>"
                               "<track><location>https://host/e.mp3</location></track>"
                               "</trackList></playlist>"),
                Optional(ElementsAre(in("a b&c.mp3"), "/m/d.mp3", "https://host/e.mp3")));
    EXPECT_EQ(read("b.xspf", "<playlist><trackList>"), std::nullopt);
    EXPECT_EQ(read("c.xspf", "<html></html>"), std::nullopt);
    EXPECT_EQ(read("d.xspf", ""), std::nullopt);
}

TEST_F(Playlists, WhatCannotBeReadIsNone) {
    EXPECT_EQ(readPlaylist(in("none.m3u")), std::nullopt);
    EXPECT_EQ(read("song.mp3", "a.mp3\n"), std::nullopt);
    EXPECT_EQ(read("huge.m3u", std::string((4U << 20) + 1, '\n')), std::nullopt);
    EXPECT_EQ(read("binary.m3u", std::string("a\0b\n", 4)), std::nullopt);
    ASSERT_EQ(mkfifo(in("pipe.m3u").c_str(), 0600), 0);
    EXPECT_EQ(readPlaylist(in("pipe.m3u")), std::nullopt);
    ASSERT_EQ(mkdir(in("folder.pls").c_str(), 0700), 0);
    EXPECT_EQ(readPlaylist(in("folder.pls")), std::nullopt);
}

TEST_F(Playlists, StandForTheirFilesAndFoldersForThoseInThem) {
    for (const char* const name : {"album", "album/.hidden", "album/b", "album/song.mp3"})
        ASSERT_EQ(mkdir(in(name).c_str(), 0755), 0);
    for (const char* const name : {"album/10.mp3", "album/2.MP3", "album/cover.jpg", "album/.h.mp3",
                                   "album/.hidden/x.mp3", "album/b/y.m4a", "album/song.mp3/z.mp3"})
        folder.write(name);
    ASSERT_EQ(symlink("b", in("album/link").c_str()), 0);
    ASSERT_EQ(mkfifo(in("album/pipe.mp3").c_str(), 0600), 0);
    folder.write("mix.m3u", "one.mp3\r\nalbum\r\nother.pls\r\n");
    folder.write("other.pls", "no playlist");
    EXPECT_THAT(filesToAdd({"x.txt", in("album"), in("none.m3u")}, {"mp3", "m4a"}),
                ElementsAre("x.txt", in("album/2.MP3"), in("album/10.mp3"), in("album/b/y.m4a"),
                            in("album/song.mp3/z.mp3"), in("none.m3u")));
    EXPECT_THAT(filesToAdd({in("album/link")}, {"m4a"}), ElementsAre(in("album/link/y.m4a")));
    EXPECT_THAT(filesToAdd({in("album")}), ElementsAre(in("album")));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THAT(filesToAdd({in("album")}, {"mp3"}, stop.get_token()), IsEmpty());
    EXPECT_THAT(filesToAdd({in("mix.m3u"), in("other.pls")}, {"mp3"}),
                ElementsAre(in("one.mp3"), in("album"), in("other.pls"), in("other.pls")));
}

TEST_F(Playlists, AFolderThatCannotBeReadIsLeftToTheBurnerToRefuse) {
    for (const char* const name : {"album", "album/closed"})
        ASSERT_EQ(mkdir(in(name).c_str(), 0755), 0);
    folder.write("album/1.mp3");
    chmod(folder.path().c_str(), 0755);
    chmod(in("album/closed").c_str(), 0);
    {
        const OrdinaryUser user;
        ASSERT_TRUE(user.isSet());
        EXPECT_THAT(filesToAdd({in("album"), in("album/closed")}, {"mp3"}),
                    ElementsAre(in("album/1.mp3"), in("album/closed"), in("album/closed")));
    }
    chmod(in("album/closed").c_str(), 0755);
}

TEST_F(Playlists, AnyDamageIsReadOrRefused) {
    const std::string whole = "<playlist>\n[playlist]\nFile1=a\nfile:///%zz\n<track><location>x"
                              "</location></track>\xFF\\\n</playlist>";
    std::minstd_rand random(3);
    for (int i = 0; i < 500; ++i) {
        std::string content = whole;
        for (int byte = 0; byte < 4; ++byte)
            content[random() % content.size()] = static_cast<char>(random());
        for (const char* name : {"a.m3u", "a.pls", "a.xspf"})
            for (const std::string& path : read(name, content).value_or(std::vector<std::string>()))
                EXPECT_NE(path, "");
    }
}

} // namespace
} // namespace quarner::testing
