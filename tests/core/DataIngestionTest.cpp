// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DataIngestion = DataBurnerTest;

std::vector<std::string> incompatible(const RecordingDelegate& delegate) {
    return delegate.reports().at(0).at("incompatible-files");
}

TEST_F(DataIngestion, ARunWithNothingAcceptedIsSilent) {
    platform.putSong("/song.wav", {.seconds = 10});
    EXPECT_FALSE(burner->addFiles({"/song.wav", "/notes.txt"}));
    finishRuns();
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(DataIngestion, AnUnsupportedFileIsReportedAsTheCallerWroteItsPath) {
    putSongs({"/one.mp3", "/target.wav"});
    platform.putFile("/alias", {.aliasOf = "/target.wav"});
    EXPECT_TRUE(burner->addFiles({"/one.mp3", "/alias"}));
    finishRuns();
    EXPECT_THAT(incompatible(delegate), ElementsAre("/alias"));
}

TEST_F(DataIngestion, AFileThatPlaysLessThanASecondIsRefused) {
    putSongs({"/short.mp3"}, 0.99);
    putSongs({"/long.mp3"}, 1.0);
    burner->addFiles({"/short.mp3", "/long.mp3"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/long.mp3"));
    EXPECT_THAT(incompatible(delegate), ElementsAre("/short.mp3"));
}

TEST_F(DataIngestion, AFolderNamedLikeASongIsRefusedForWantOfAPlayTime) {
    platform.putFile("/album.mp3");
    EXPECT_TRUE(burner->addFiles({"/album.mp3"}));
    finishRuns();
    EXPECT_THAT(incompatible(delegate), ElementsAre("/album.mp3"));
}

TEST_F(DataIngestion, NoFileIsProtectedAndTheReportDoesNotSpeakOfIt) {
    platform.putSong("/locked.mp3", {.seconds = 10}, {.typeCode = typeCode("M4P ")});
    platform.putSong("/unreadable.mp3", {.seconds = 10}, {.isReadable = false});
    EXPECT_TRUE(burner->addFiles({"/locked.mp3", "/unreadable.mp3"}));
    finishRuns();
    EXPECT_EQ(count(), 2U);
    EXPECT_EQ(delegate.reports().at(0), (EndReport{{"incompatible-files", {}}}));
}

TEST_F(DataIngestion, AFileWithoutAttributesIsAddedWithSizeZero) {
    platform.putSong("/one.mp3", {.seconds = 10}, {.isReadable = false});
    compile({"/one.mp3"});
    const auto properties = burner->propertyOfBurnItem(burner->child(0, nullptr));
    EXPECT_EQ(valueFor(*properties, kQuarnItemRealFileSizeKey), Value(0));
}

TEST_F(DataIngestion, AFileThatIsInTheCompilationIsSkippedWithoutACallback) {
    putSongs({"/one.mp3"});
    platform.putFile("/alias", {.aliasOf = "/one.mp3"});
    compile({"/one.mp3"});
    EXPECT_FALSE(burner->addFiles({"/one.mp3"}));
    EXPECT_FALSE(burner->addFiles({"/alias"}));
    finishRuns();
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_EQ(count(), 1U);
}

TEST_F(DataIngestion, ADuplicateIsKnownByTheNodesSourcePathNotByItsRecord) {
    platform.putSong("/one.mp3", {.seconds = 10},
                     {.nodeProperties = {{kQuarnItemFilePathKey, "/elsewhere.mp3"}}});
    compile({"/one.mp3"});
    EXPECT_FALSE(burner->addFiles({"/one.mp3"}));
}

TEST_F(DataIngestion, PositionsCountAllAcceptedFilesAlsoThoseThatAreThenRefused) {
    putSongs({"/a.mp3", "/c.mp3"});
    platform.putFile("/b.mp3");
    burner->addFiles({"/c.mp3", "/b.mp3", "/a.mp3"});
    finishRuns();
    EXPECT_THAT(delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged(a.mp3, 1, 3)",
                            "fileDidAdded(/a.mp3)", "addFilesProgressDidChanged(b.mp3, 2, 3)",
                            "addFilesProgressDidChanged(c.mp3, 3, 3)", "fileDidAdded(/c.mp3)",
                            "addFilesProgressDidEnd"));
}

TEST_F(DataIngestion, ACancelKeepsWhatWasAddedAndReportsWhatWasRefused) {
    platform.putFile("/a.mp3");
    putSongs({"/b.mp3", "/c.mp3"});
    platform.onCall(ServiceCall::MovieWithFile, [&](const std::string& path) {
        if (path == "/b.mp3")
            burner->cancelToAddFiles();
    });
    burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/b.mp3"));
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 1U);
    EXPECT_THAT(incompatible(delegate), ElementsAre("/a.mp3"));
}

TEST_F(DataIngestion, ANodeThatCannotBeMadeIsARefusedFile) {
    platform.putSong("/null.mp3", {.seconds = 10}, {.makesNode = false});
    platform.putSong("/throws.mp3", {.seconds = 10}, {.nodeThrows = true});
    burner->addFiles({"/null.mp3", "/throws.mp3"});
    finishRuns();
    EXPECT_EQ(count(), 0U);
    EXPECT_THAT(incompatible(delegate), ElementsAre("/null.mp3", "/throws.mp3"));
    EXPECT_THAT(platform.log(), IsEmpty());
}

TEST_F(DataIngestion, TheNodesOwnPropertiesWinAndReachTheDelegate) {
    platform.putSong("/one.mp3", {.seconds = 75},
                     {.size = 4096,
                      .nodeProperties = {{"DRPosixFileMode", 0644},
                                         {kQuarnItemDisplayNameKey, "the node's name"}}});
    burner->addFiles({"/one.mp3"});
    finishRuns();
    const Dictionary added = delegate.added().at(0);
    EXPECT_EQ(valueFor(added, kQuarnItemDisplayNameKey), Value("the node's name"));
    EXPECT_EQ(valueFor(added, "DRPosixFileMode"), Value(0644));
    EXPECT_EQ(valueFor(added, kQuarnItemDurationKey), Value("00:01:15"));
    EXPECT_EQ(valueFor(added, kQuarnItemFileSizeKey), Value("4 KB"));
    EXPECT_EQ(added, *burner->propertyOfBurnItem(burner->child(0, nullptr)));
}

TEST_F(DataIngestion, EveryItemIsAFileNodeOfTheResolvedPath) {
    putSongs({"/one.mp3"});
    platform.putFile("/alias", {.aliasOf = "/one.mp3"});
    compile({"/alias"});
    const auto node = std::dynamic_pointer_cast<const DRFile>(burner->child(0, nullptr));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->sourcePath(), "/one.mp3");
}

} // namespace
} // namespace quarner::testing
