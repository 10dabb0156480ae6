// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "quarner/quarner.h"
#include "quarner/scripted.h"
#include "tools/quarner/command/Refusals.h"

namespace quarner::cli {
namespace {

namespace fs = std::filesystem;

/// Files that exist, and about which the platform says what the test wants.
class RefusalsTest : public testing::Test {
protected:
    RefusalsTest() {
        std::string pattern = (fs::path(testing::TempDir()) / "quarner-refusals-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~RefusalsTest() override { fs::remove_all(folder); }

    std::string file(const std::string& name, const MediaScript& media = {.isPlayable = false}) {
        const std::string path = (folder / name).string();
        std::ofstream(path) << "content";
        platform.putSong(path, media);
        return path;
    }

    std::string reason(const std::string& path) {
        return reasonForRefusal(DiscKind::Audio, *burner, path);
    }

    ScriptedPlatform platform;
    const std::shared_ptr<Quarner> burner = Quarner::audioCDBurner();
    fs::path folder;
};

TEST_F(RefusalsTest, AMissingFile) {
    EXPECT_EQ(reason((folder / "none.mp3").string()), "no such file");
    EXPECT_EQ(reason(file("plain.mp3") + "/below.mp3"), "no such file");
    EXPECT_EQ(reason(""), "no such file");
}

TEST_F(RefusalsTest, AFolder) {
    fs::create_directory(folder / "album.mp3");
    EXPECT_EQ(reason((folder / "album.mp3").string()), "unsupported type (a folder)");
}

TEST_F(RefusalsTest, APipe) {
    const std::string pipe = (folder / "pipe.mp3").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(reason(pipe), "unsupported type (not a file on disk)");
}

TEST_F(RefusalsTest, CopyProtectedMedia) {
    EXPECT_EQ(reason(file("a.m4p")), "copy-protected");
    EXPECT_EQ(reason(file("a.M4B")), "copy-protected");
}

TEST_F(RefusalsTest, ADataDiscKnowsNoProtectedMedia) {
    const auto data = Quarner::dataCDBurner();
    EXPECT_EQ(reasonForRefusal(DiscKind::Data, *data, file("a.m4p")),
              "unsupported type (mp3 and m4a can be added)");
    EXPECT_EQ(reasonForRefusal(DiscKind::Data, *data, file("a.mp3")),
              "unreadable: no sound could be found in it");
}

TEST_F(RefusalsTest, AnotherTypeThanTheSupportedOnes) {
    EXPECT_EQ(reason(file("a.wav", {.seconds = 10.0})),
              "unsupported type (mp3 and m4a can be added)");
}

TEST_F(RefusalsTest, AFileWithoutSound) {
    EXPECT_EQ(reason(file("a.mp3")), "unreadable: no sound could be found in it");
}

TEST_F(RefusalsTest, AFileThatIsTooShort) {
    EXPECT_EQ(reason(file("a.mp3", {.seconds = 0.5})), "shorter than a second");
    EXPECT_EQ(reason(file("b.mp3", {.time = QTTime{0, 0}})), "shorter than a second");
}

TEST_F(RefusalsTest, AFileOfWhichNoTrackCouldBeMade) {
    EXPECT_EQ(reason(file("a.mp3", {.seconds = 10.0, .makesTrack = false})),
              "unreadable: it could not be added");
}

TEST_F(RefusalsTest, AnAliasIsJudgedByWhatItStandsFor) {
    const std::string target = file("a.wav");
    platform.putFile("/alias.mp3", {.aliasOf = target});
    EXPECT_EQ(reason("/alias.mp3"), "unsupported type (mp3 and m4a can be added)");
}

} // namespace
} // namespace quarner::cli
