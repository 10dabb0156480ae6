// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <typename Burner>
class BothIngestion : public BurnerTest<Burner> {
protected:
    std::vector<std::string> incompatibleFiles() const {
        return this->delegate.reports().at(0).at("incompatible-files");
    }
};

TYPED_TEST_SUITE(BothIngestion, Burners, BurnerNames);

TYPED_TEST(BothIngestion, AnEmptyListIsRefusedWithoutARun) {
    EXPECT_FALSE(this->burner->addFiles({}));
    this->finishRuns();
    EXPECT_EQ(this->platform.calls(ServiceCall::AsyncGlobal), 0U);
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothIngestion, TheUsersOrderDecidesAndIgnoresCase) {
    this->putSongs({"/b.mp3", "/A.mp3"});
    this->burner->addFiles({"/b.mp3", "/A.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/A.mp3", "/b.mp3"));
}

TYPED_TEST(BothIngestion, TheOrderFollowsTheLocale) {
    this->putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
    this->platform.setCollation(
        [](const std::string& a, const std::string& b) { return b.compare(a); });
    this->burner->addFiles({"/b.mp3", "/c.mp3", "/a.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/c.mp3", "/b.mp3", "/a.mp3"));
}

TYPED_TEST(BothIngestion, TheRefusedPathsAreSortedToo) {
    this->putSongs({"/a.mp3"});
    this->platform.putFile("/y.txt");
    this->platform.putFile("/X.txt");
    this->burner->addFiles({"/y.txt", "/a.mp3", "/X.txt"});
    this->finishRuns();
    EXPECT_THAT(this->incompatibleFiles(), ElementsAre("/X.txt", "/y.txt"));
}

TYPED_TEST(BothIngestion, AFileThatIsAlreadyInTheListIsSkippedSilently) {
    this->putSongs({"/a.mp3"});
    this->compile({"/a.mp3"});
    EXPECT_FALSE(this->burner->addFiles({"/a.mp3"}));
    this->finishRuns();
    EXPECT_EQ(this->count(), 1U);
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothIngestion, ADuplicateIsInNoListOfTheReport) {
    this->putSongs({"/a.mp3", "/b.mp3"});
    this->compile({"/a.mp3"});
    EXPECT_TRUE(this->burner->addFiles({"/a.mp3", "/b.mp3"}));
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/a.mp3", "/b.mp3"));
    EXPECT_THAT(this->delegate.reports().back(), this->reportOf({}));
}

TYPED_TEST(BothIngestion, AFileThatAnotherRunAddsWhileThePathsAreSortedOutIsADuplicateToo) {
    this->putSongs({"/a.mp3", "/b.mp3"});
    const std::shared_ptr<BurnItem> item = this->makeItem("b");
    item->setProperties({{kQuarnItemFilePathKey, "/b.mp3"}});
    this->platform.onCall(ServiceCall::ResolveAlias, [&](const std::string& path) {
        if (path == "/b.mp3" && this->count() == 0)
            this->burner->_content.append(item);
    });
    this->burner->addFiles({"/a.mp3", "/b.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/b.mp3", "/a.mp3"));
}

TYPED_TEST(BothIngestion, ADuplicateIsRecognisedByItsResolvedPath) {
    this->putSongs({"/a.mp3"});
    this->platform.putFile("/alias.mp3", {.aliasOf = "/a.mp3"});
    this->compile({"/a.mp3"});
    EXPECT_FALSE(this->burner->addFiles({"/alias.mp3"}));
    this->finishRuns();
    EXPECT_EQ(this->count(), 1U);
}

TYPED_TEST(BothIngestion, TheSameFileTwiceInOneCallBecomesTwoItems) {
    this->putSongs({"/a.mp3"});
    EXPECT_TRUE(this->burner->addFiles({"/a.mp3", "/a.mp3"}));
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/a.mp3", "/a.mp3"));
}

TYPED_TEST(BothIngestion, AFileThatARunUnderWayWillAddIsAcceptedAgain) {
    this->putSongs({"/a.mp3"});
    this->platform.backgroundQueue().hold();
    EXPECT_TRUE(this->burner->addFiles({"/a.mp3"}));
    EXPECT_TRUE(this->burner->addFiles({"/a.mp3"}));
    this->platform.backgroundQueue().release();
    this->finishRuns();
    EXPECT_EQ(this->count(), 2U);
}

TYPED_TEST(BothIngestion, AnAliasIsAcceptedUnderItsTargetsPath) {
    this->putSongs({"/target.mp3"});
    this->platform.putFile("/alias", {.aliasOf = "/target.mp3"});
    EXPECT_TRUE(this->burner->addFiles({"/alias"}));
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/target.mp3"));
    ASSERT_EQ(this->delegate.added().size(), 1U);
    EXPECT_EQ(valueFor(this->delegate.added()[0], kQuarnItemFilePathKey), Value("/target.mp3"));
}

TYPED_TEST(BothIngestion, WhatTheRunRefusesIsReportedResolvedAndAfterTheOthers) {
    this->platform.putFile("/real/broken.mp3");
    this->platform.putFile("/alias", {.aliasOf = "/real/broken.mp3"});
    this->platform.putFile("/z.txt");
    EXPECT_TRUE(this->burner->addFiles({"/alias", "/z.txt"}));
    this->finishRuns();
    EXPECT_THAT(this->incompatibleFiles(), ElementsAre("/z.txt", "/real/broken.mp3"));
    EXPECT_THAT(this->delegate.added(), IsEmpty());
}

TYPED_TEST(BothIngestion, TheExtensionCountsInAnyCase) {
    this->putSongs({"/song.MP3", "/tune.M4a"});
    EXPECT_TRUE(this->burner->addFiles({"/song.MP3", "/tune.M4a"}));
    this->finishRuns();
    EXPECT_EQ(this->count(), 2U);
}

TYPED_TEST(BothIngestion, AFileShorterThanASecondIsReportedByTheRun) {
    this->platform.putSong("/short.mp3", {.seconds = 0.5});
    EXPECT_TRUE(this->burner->addFiles({"/short.mp3"}));
    this->finishRuns();
    EXPECT_EQ(this->count(), 0U);
    EXPECT_THAT(this->incompatibleFiles(), ElementsAre("/short.mp3"));
}

TYPED_TEST(BothIngestion, AFileOfOneSecondIsLongEnough) {
    this->platform.putSong("/second.mp3", {.seconds = 1.0});
    this->burner->addFiles({"/second.mp3"});
    this->finishRuns();
    EXPECT_EQ(this->count(), 1U);
}

TYPED_TEST(BothIngestion, ANegativeDurationIsIncompatible) {
    this->platform.putSong("/odd.mp3", {.time = QTTime{.value = -90, .scale = 10}});
    this->burner->addFiles({"/odd.mp3"});
    this->finishRuns();
    EXPECT_EQ(this->count(), 0U);
    EXPECT_THAT(this->incompatibleFiles(), ElementsAre("/odd.mp3"));
}

TYPED_TEST(BothIngestion, AddingLogsNothing) {
    this->putSongs({"/a.mp3"});
    this->burner->addFiles({"/a.mp3", "/missing.mp3", "/x.txt"});
    this->finishRuns();
    EXPECT_THAT(this->platform.log(), IsEmpty());
}

} // namespace
} // namespace quarner::testing
