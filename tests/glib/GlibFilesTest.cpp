// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "adapters/glib/GlibServices.h"
#include "quarner/platform/Platform.h"
#include "quarner/util/Paths.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

bool setTypeCode(const std::string& path, std::string_view code) {
    return setxattr(path.c_str(), "user.hfs.type", code.data(), code.size(), 0) == 0;
}

bool hasExtendedAttributes(const TemporaryFolder& folder) {
    return setTypeCode(folder.write("probe"), "test");
}

/// Runs `action` without root's rights. Returns false if that is impossible.
bool runUnprivileged(const std::function<void()>& action) {
    if (geteuid() != 0) {
        action();
        return true;
    }
    bool isUnprivileged = false;
    std::thread([&] {
        constexpr unsigned nobody = 65534;
        // Unlike the C library's function, the system call affects this thread only.
        isUnprivileged = syscall(SYS_setresuid, -1, nobody, -1) == 0;
        if (isUnprivileged)
            action();
    }).join();
    return isUnprivileged;
}

std::string linkTo(const std::string& url) {
    return "[Desktop Entry]\nType=Link\nName=A link\nURL=" + url + "\n";
}

class GlibFiles : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::shared_ptr<FileService> files = makeGlibFileService();
};

TEST_F(GlibFiles, TheProblemOfAFileIsWhatKeepsItFromBeingRead) {
    using Kind = FileProblem::Kind;
    const std::string file = folder.write("a.mp3");
    EXPECT_EQ(files->problem(file), std::nullopt);
    const FileProblem missing = {Kind::Missing, "No such file or directory"};
    EXPECT_EQ(files->problem(folder.file("none.mp3")), missing);
    EXPECT_EQ(files->problem(""), missing);
    EXPECT_EQ(files->problem(file + "/below"), (FileProblem{Kind::Missing, "Not a directory"}));
    EXPECT_EQ(files->problem(folder.path().string()), (FileProblem{Kind::NotAFile, "a folder"}));
    const std::string pipe = folder.file("pipe.mp3");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(files->problem(pipe), (FileProblem{Kind::NotAFile, "not a file on disk"}));
}

TEST_F(GlibFiles, AFileWithoutPermissionIsUnreadable) {
    const std::string file = folder.write("secret.mp3");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    const auto look = [&] {
        EXPECT_EQ(files->problem(file),
                  (FileProblem{FileProblem::Kind::Unreadable, "Permission denied"}));
    };
    if (!runUnprivileged(look))
        GTEST_SKIP() << "this process cannot give up its rights";
}

TEST_F(GlibFiles, TheDisplayNameIsTheNameInTheFolder) {
    EXPECT_EQ(files->displayName(folder.write("Grüße \"aus\" 東京 🎵.mp3")),
              "Grüße \"aus\" 東京 🎵.mp3");
    EXPECT_EQ(files->displayName(folder.path().string()), folder.path().filename().string());
}

TEST_F(GlibFiles, TheDisplayNameOfInvalidUTF8IsValidAndStillTold) {
    const std::string path = folder.write("so\xFFng.mp3");
    const std::string name = files->displayName(path);
    EXPECT_EQ(name.find('\xFF'), std::string::npos);
    EXPECT_TRUE(name.starts_with("so\uFFFDng.mp3")) << name;
}

TEST_F(GlibFiles, TheDisplayNameOfNothingIsTheLastComponent) {
    EXPECT_EQ(files->displayName("/no/such/folder/song.mp3"), "song.mp3");
    EXPECT_EQ(files->displayName("/no/such/so\xFFng.mp3"), "so\uFFFDng.mp3");
    EXPECT_EQ(files->displayName(""), "");
}

TEST_F(GlibFiles, TheSizeIsThatOfTheFileAlsoThroughASymbolicLink) {
    const std::string path = folder.write("song.mp3", std::string(12345, 'x'));
    std::filesystem::create_symlink(path, folder.file("link.mp3"));
    ASSERT_TRUE(files->attributes(path));
    EXPECT_EQ(files->attributes(path)->size, 12345);
    EXPECT_EQ(files->attributes(folder.file("link.mp3"))->size, 12345);
}

TEST_F(GlibFiles, AFileBeyondFourGigabytesHasItsFullSize) {
    const std::string path = folder.write("long.mp3");
    std::filesystem::resize_file(path, 5'000'000'000U);
    EXPECT_EQ(files->attributes(path)->size, 5'000'000'000);
}

TEST_F(GlibFiles, WhatIsNotThereHasNoAttributes) {
    EXPECT_FALSE(files->attributes(folder.file("gone.mp3")));
    EXPECT_FALSE(files->attributes(""));
}

TEST_F(GlibFiles, AFileThatMayNotBeReadHasNoAttributesAndCountsAsProtected) {
    const std::string path = folder.write("secret.mp3", "x");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    installPlatform({.files = files});
    const bool wasPossible = runUnprivileged([&] {
        EXPECT_FALSE(files->attributes(path));
        EXPECT_TRUE(Paths::isQuickTimeProtectedFile(path));
        EXPECT_FALSE(Paths::hfsType(path));
    });
    installPlatform({});
    if (!wasPossible)
        GTEST_SKIP() << "the superuser's rights cannot be laid down here";
}

TEST_F(GlibFiles, AFileInAFolderThatMayNotBeEnteredHasNoAttributes) {
    const std::string path = folder.write("song.mp3", "x");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0600));
    const bool wasPossible = runUnprivileged([&] { EXPECT_FALSE(files->attributes(path)); });
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0700));
    EXPECT_TRUE(files->attributes(path));
    if (!wasPossible)
        GTEST_SKIP() << "the superuser's rights cannot be laid down here";
}

TEST_F(GlibFiles, TheTypeCodeIsTheExtendedAttributeOfFourBytes) {
    if (!hasExtendedAttributes(folder))
        GTEST_SKIP() << "no extended user attributes in " << folder.path();
    const std::string path = folder.write("book");
    EXPECT_FALSE(files->attributes(path)->hfsTypeCode);
    ASSERT_TRUE(setTypeCode(path, "M4B "));
    EXPECT_EQ(files->attributes(path)->hfsTypeCode, 0x4D344220U);
    ASSERT_TRUE(setTypeCode(path, std::string_view("\0\x01\xFE\xFF", 4)));
    EXPECT_EQ(files->attributes(path)->hfsTypeCode, 0x0001FEFFU);
    for (const std::string_view wrong : {"", "M4B", "M4B x", "a long value"}) {
        ASSERT_TRUE(setTypeCode(path, wrong));
        EXPECT_FALSE(files->attributes(path)->hfsTypeCode) << wrong;
    }
}

TEST_F(GlibFiles, ProtectedFilesAreKnownByTheirTypeCodeOrTheirExtension) {
    if (!hasExtendedAttributes(folder))
        GTEST_SKIP() << "no extended user attributes in " << folder.path();
    installPlatform({.files = files});
    const std::string coded = folder.write("no extension");
    EXPECT_FALSE(Paths::isQuickTimeProtectedFile(coded));
    EXPECT_EQ(Paths::hfsType(coded), std::string("'\0\0\0\0'", 6));
    ASSERT_TRUE(setTypeCode(coded, "M4P "));
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile(coded));
    EXPECT_EQ(Paths::hfsType(coded), "'M4P '");
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile(folder.write("song.M4P")));
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile(folder.write("book.m4b")));
    EXPECT_FALSE(Paths::isQuickTimeProtectedFile(folder.write("song.mp3")));
    EXPECT_TRUE(Paths::isQuickTimeProtectedFile(folder.file("gone.mp3")));
    EXPECT_FALSE(Paths::hfsType(folder.file("gone.mp3")));
    installPlatform({});
}

TEST_F(GlibFiles, AnIconIsNamesFromTheBestToTheMostGeneral) {
    const std::vector<std::string> names =
        files->icon(folder.write("song.mp3", "some sound")).names;
    ASSERT_GE(names.size(), 2U);
    EXPECT_EQ(names.front(), "audio-mpeg");
    EXPECT_NE(std::find(names.begin(), names.end(), "audio-x-generic"), names.end());
    const std::vector<std::string> ofFolder = files->icon(folder.path().string()).names;
    EXPECT_NE(std::find(ofFolder.begin(), ofFolder.end(), "folder"), ofFolder.end());
    EXPECT_TRUE(files->icon(folder.file("gone.mp3")).names.empty());
}

TEST_F(GlibFiles, ALinkEntryIsAnAliasOfTheLocalFileThatItsURLNames) {
    const std::string target = folder.write("Grüße 1.mp3");
    const std::string encoded = "file://" + folder.file("Gr%C3%BC%C3%9Fe%201.mp3");
    EXPECT_EQ(files->resolveAlias(folder.write("a.desktop", linkTo(encoded))), target);
    EXPECT_EQ(files->resolveAlias(folder.write("b.desktop", linkTo(target))), target);
    const std::string odd = folder.write("so\xFFng.mp3");
    const std::string oddURL = "file://localhost" + folder.file("so%FFng.mp3");
    EXPECT_EQ(files->resolveAlias(folder.write("c.desktop", linkTo(oddURL))), odd);
}

TEST_F(GlibFiles, AnAliasOfAnAliasStandsForTheLastTarget) {
    const std::string target = folder.write("song.mp3");
    const std::string last = folder.write("last.desktop", linkTo(target));
    const std::string middle = folder.write("middle.desktop", linkTo(last));
    EXPECT_EQ(files->resolveAlias(folder.write("first.desktop", linkTo(middle))), target);
}

TEST_F(GlibFiles, AliasesInACircleStandForNothing) {
    const std::string one = folder.file("one.desktop");
    const std::string two = folder.write("two.desktop", linkTo(one));
    folder.write("one.desktop", linkTo(two));
    EXPECT_FALSE(files->resolveAlias(one));
    const std::string self = folder.file("self.desktop");
    folder.write("self.desktop", linkTo(self));
    EXPECT_FALSE(files->resolveAlias(self));
}

TEST_F(GlibFiles, AnAliasWhoseTargetIsGoneStandsForNothing) {
    const std::string broken = folder.write("broken.desktop", linkTo(folder.file("gone.mp3")));
    EXPECT_FALSE(files->resolveAlias(broken));
    EXPECT_FALSE(files->resolveAlias(folder.write("chain.desktop", linkTo(broken))));
}

TEST_F(GlibFiles, WhatIsNoAliasStandsForNothing) {
    const std::string target = folder.write("song.mp3");
    const std::string link = folder.write("link.desktop", linkTo(target));
    std::filesystem::create_symlink(target, folder.file("symbolic.mp3"));
    std::filesystem::create_symlink(link, folder.file("symbolic.desktop"));
    std::filesystem::create_directory(folder.file("folder.desktop"));
    ASSERT_EQ(mkfifo(folder.file("pipe.desktop").c_str(), 0600), 0);
    for (const std::string& path :
         {target, folder.path().string(), folder.file("symbolic.mp3"),
          folder.file("symbolic.desktop"), folder.file("folder.desktop"),
          folder.file("pipe.desktop"), folder.file("gone.desktop"), std::string(),
          folder.write("named-otherwise.mp3", linkTo(target)),
          folder.write("application.desktop", "[Desktop Entry]\nType=Application\nURL=/tmp\n"),
          folder.write("web.desktop", linkTo("https://example.org/song.mp3")),
          folder.write("far.desktop", linkTo("file://elsewhere" + target)),
          folder.write("relative.desktop", linkTo("song.mp3")),
          folder.write("no-url.desktop", "[Desktop Entry]\nType=Link\n"),
          folder.write("empty.desktop"), folder.write("garbage.desktop", "\xFF\0\x01[[[ =")})
        EXPECT_FALSE(files->resolveAlias(path)) << path;
}

TEST_F(GlibFiles, ATargetThatIsASymbolicLinkIsNotFollowed) {
    std::filesystem::create_symlink(folder.write("song.mp3"), folder.file("symbolic.mp3"));
    EXPECT_EQ(files->resolveAlias(folder.write("a.desktop", linkTo(folder.file("symbolic.mp3")))),
              folder.file("symbolic.mp3"));
}

TEST_F(GlibFiles, APathComesBackLetterForLetterUnlessItIsAnAlias) {
    installPlatform({.files = files});
    const std::string target = folder.write("song.mp3");
    const std::string alias = folder.write("a.desktop", linkTo(target));
    const std::string broken = folder.write("b.desktop", linkTo(folder.file("gone.mp3")));
    EXPECT_EQ(Paths::realPath(alias), target);
    for (const std::string& path : {target, folder.path().string() + "/./song.mp3", broken,
                                    folder.file("gone.mp3"), folder.path().string() + "/"})
        EXPECT_EQ(Paths::realPath(path), path);
    installPlatform({});
}

} // namespace
} // namespace quarner
