// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <quarner/scripted.h>

#include "quarner/util/Paths.h"

namespace quarner::testing {
namespace {

class PathsTest : public ::testing::Test {
protected:
    ScriptedPlatform platform;
};

TEST_F(PathsTest, WhatIsNoAliasComesBackAsItWasGiven) {
    platform.putFile("/dir/song.mp3");
    platform.putFile("/dir");
    for (const char* path : {"/dir/song.mp3", "/dir", "/missing", "", "/dir/../dir//song.mp3",
                             "relative/./x.mp3", "/trailing/"})
        EXPECT_EQ(Paths::realPath(path), path);
}

TEST_F(PathsTest, AnAliasGivesWhatItStandsFor) {
    platform.putFile("/target.mp3");
    platform.putFile("/alias", {.aliasOf = "/target.mp3"});
    EXPECT_EQ(Paths::realPath("/alias"), "/target.mp3");
}

TEST_F(PathsTest, AChainOfAliasesIsFollowedToItsEnd) {
    platform.putFile("/target.mp3");
    platform.putFile("/one", {.aliasOf = "/two"});
    platform.putFile("/two", {.aliasOf = "/target.mp3"});
    EXPECT_EQ(Paths::realPath("/one"), "/target.mp3");
}

TEST_F(PathsTest, AnAliasWhoseTargetIsGoneComesBackItself) {
    platform.putFile("/one", {.aliasOf = "/two"});
    platform.putFile("/two", {.aliasOf = "/gone.mp3"});
    EXPECT_EQ(Paths::realPath("/two"), "/two");
    EXPECT_EQ(Paths::realPath("/one"), "/one");
}

TEST_F(PathsTest, WhatCannotBeExaminedCountsAsProtected) {
    platform.putFile("/locked.mp3", {.isReadable = false});
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile("/missing.mp3"));
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile("/locked.mp3"));
}

TEST_F(PathsTest, TheProtectedExtensionsCountInAnyCase) {
    for (const char* path : {"/song.M4P", "/song.m4P", "/song.m4p", "/book.m4b", "/book.M4B"}) {
        platform.putFile(path);
        EXPECT_TRUE(Paths::isQuickTimeProtectedFile(path)) << path;
    }
}

TEST_F(PathsTest, OrdinaryFilesAreNotProtected) {
    for (const char* path : {"/song.mp3", "/song.m4a", "/m4p", "/song.m4p.mp3", "/x.m4p/song"}) {
        platform.putFile(path);
        EXPECT_FALSE(Paths::isQuickTimeProtectedFile(path)) << path;
    }
}

TEST_F(PathsTest, TheProtectedTypeCodesCountExactly) {
    const auto isProtected = [&](std::string_view code) {
        platform.putFile("/song", {.typeCode = typeCode(code)});
        return Paths::isQuickTimeProtectedFile("/song");
    };
    EXPECT_TRUE(isProtected("M4P "));
    EXPECT_TRUE(isProtected("M4B "));
    EXPECT_FALSE(isProtected("m4p "));
    EXPECT_FALSE(isProtected("M4A "));
    EXPECT_FALSE(isProtected("M4P2"));
}

TEST_F(PathsTest, TheTypeCodeOfAFileIsAQuotedText) {
    platform.putFile("/a", {.typeCode = typeCode("Midi")});
    platform.putFile("/plain");
    EXPECT_EQ(Paths::hfsType("/a"), "'Midi'");
    EXPECT_EQ(Paths::hfsType("/plain"), Paths::typeStringForCode(0));
    EXPECT_EQ(Paths::hfsType("/missing"), std::nullopt);
}

TEST_F(PathsTest, ATypeStringHoldsTheBytesOfTheCode) {
    EXPECT_EQ(Paths::typeStringForCode(0x4D345020), "'M4P '");
    EXPECT_EQ(Paths::typeStringForCode(0), std::string("'\0\0\0\0'", 6));
    EXPECT_EQ(Paths::typeStringForCode(0xFF00FE01), std::string("'\xFF\0\xFE\x01'", 6));
}

TEST_F(PathsTest, TheExtensionIsWhatFollowsTheLastDotOfTheLastComponent) {
    EXPECT_EQ(Paths::lowercaseExtension("/a/song.MP3"), "mp3");
    EXPECT_EQ(Paths::lowercaseExtension("/a/song.tar.Gz"), "gz");
    EXPECT_EQ(Paths::lowercaseExtension("/a/song.AZ@["), "az@[");
    EXPECT_EQ(Paths::lowercaseExtension("/a/.mp3"), "mp3");
    EXPECT_EQ(Paths::lowercaseExtension("/.m4a"), "m4a");
    EXPECT_EQ(Paths::lowercaseExtension("/a.b/song"), "");
    EXPECT_EQ(Paths::lowercaseExtension("/a/song."), "");
    EXPECT_EQ(Paths::lowercaseExtension("song.m4a"), "m4a");
    EXPECT_EQ(Paths::lowercaseExtension("/a/folder.mp3/"), "mp3");
    EXPECT_EQ(Paths::lowercaseExtension(""), "");
    EXPECT_EQ(Paths::lowercaseExtension("/"), "");
    EXPECT_EQ(Paths::lowercaseExtension("/a/x.\xC3\x84"), "\xC3\x84"); // letters of ASCII only
}

} // namespace
} // namespace quarner::testing
