// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Paths = std::vector<std::string>;

template <typename Burner>
class BothIngestionOrder : public BurnerTest<Burner> {
protected:
    void SetUp() override {
        this->putSongs({"/a.mp3", "/b.mp3", "/c.mp3", "/d.mp3", "/e.mp3", "/f.mp3"});
    }
    /// Lets the main queue serve one file of a run, so that the run waits with its next one.
    void addOne() {
        const std::uint64_t before = this->count();
        ASSERT_TRUE(this->platform.runUntil([&] { return this->queue().waiting() > 0; }));
        this->queue().releaseOne(0);
        ASSERT_TRUE(this->platform.runUntil([&] { return this->count() > before; }));
    }
    ScriptedQueue& queue() { return this->platform.mainQueue(); }
};

TYPED_TEST_SUITE(BothIngestionOrder, Burners, BurnerNames);

TYPED_TEST(BothIngestionOrder, KeepsTheGivenOrder) {
    EXPECT_TRUE(this->burner->addFilesInOrder({"/c.mp3", "/a.mp3", "/b.mp3"}));
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/c.mp3", "/a.mp3", "/b.mp3"));
    EXPECT_EQ(this->platform.calls(ServiceCall::CompareTexts), 0U);
}

TYPED_TEST(BothIngestionOrder, AppendsOrInsertsAtARow) {
    this->compile({"/a.mp3", "/b.mp3"});
    this->burner->addFilesInOrder({"/d.mp3", "/c.mp3"}, 1);
    this->finishRuns();
    this->burner->addFilesInOrder({"/e.mp3"}, 99);
    this->finishRuns();
    this->burner->addFilesInOrder({"/f.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->paths(),
                ElementsAre("/a.mp3", "/d.mp3", "/c.mp3", "/b.mp3", "/e.mp3", "/f.mp3"));
}

TYPED_TEST(BothIngestionOrder, InsertsBehindAnItem) {
    this->compile({"/a.mp3", "/b.mp3"});
    this->burner->addFilesBehind({"/d.mp3", "/c.mp3"}, this->burner->child(0, nullptr));
    this->finishRuns();
    this->burner->addFilesBehind({"/e.mp3"}, nullptr);
    this->finishRuns();
    this->burner->addFilesBehind({"/f.mp3"}, this->makeItem());
    this->finishRuns();
    EXPECT_THAT(this->paths(),
                ElementsAre("/e.mp3", "/a.mp3", "/d.mp3", "/c.mp3", "/b.mp3", "/f.mp3"));
}

TYPED_TEST(BothIngestionOrder, FiltersAndReportsAsAddFiles) {
    this->compile({"/a.mp3"});
    this->platform.putFile("/x.txt");
    EXPECT_FALSE(this->burner->addFilesInOrder({}));
    EXPECT_FALSE(this->burner->addFilesInOrder({"/x.txt", "/a.mp3"}));
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
    EXPECT_TRUE(this->burner->addFilesInOrder({"/x.txt", "/c.mp3", "/a.mp3", "/b.mp3"}, 0));
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged(c.mp3, 1, 2)",
                            "fileDidAdded(/c.mp3)", "addFilesProgressDidChanged(b.mp3, 2, 2)",
                            "fileDidAdded(/b.mp3)", "addFilesProgressDidEnd"));
    EXPECT_EQ(this->delegate.reports().back(), this->reportOf({"/x.txt"}));
    EXPECT_THAT(this->paths(), ElementsAre("/c.mp3", "/b.mp3", "/a.mp3"));
}

TYPED_TEST(BothIngestionOrder, ACallDuringARunInsertsAtItsRow) {
    this->compile({"/a.mp3", "/b.mp3"});
    this->queue().hold();
    this->burner->addFilesInOrder({"/c.mp3", "/d.mp3"}, 1);
    this->addOne();
    EXPECT_THAT(this->paths(), ElementsAre("/a.mp3", "/c.mp3", "/b.mp3"));
    this->burner->addFilesInOrder({"/e.mp3"}, 2);
    this->burner->addFilesInOrder({"/f.mp3"}, 0);
    this->queue().release();
    this->finishRuns();
    EXPECT_THAT(this->paths(),
                ElementsAre("/f.mp3", "/a.mp3", "/c.mp3", "/d.mp3", "/e.mp3", "/b.mp3"));
}

TYPED_TEST(BothIngestionOrder, EditsDuringARunLeaveItsFilesTogether) {
    this->compile({"/a.mp3", "/b.mp3", "/c.mp3"});
    this->queue().hold();
    this->burner->addFilesInOrder({"/d.mp3", "/e.mp3", "/f.mp3"}, 2);
    this->addOne();
    this->burner->removeItem(this->burner->child(1, nullptr));
    this->burner->moveBurnItem({0}, 9);
    this->addOne();
    EXPECT_THAT(this->paths(), ElementsAre("/d.mp3", "/e.mp3", "/c.mp3", "/a.mp3"));
    this->burner->removeItems({this->burner->child(0, nullptr), this->burner->child(1, nullptr)});
    this->queue().release();
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/f.mp3", "/c.mp3", "/a.mp3"));
}

TYPED_TEST(BothIngestionOrder, ManyCallsAtOnceKeepTheOrderOfTheCalls) {
    Paths expected;
    for (int call = 0; call < 20; ++call) {
        Paths paths;
        for (int file = 5; file-- > 0;)
            paths.push_back('/' + std::to_string(100 * call + file) + ".mp3");
        this->putSongs(paths);
        expected.insert(expected.end(), paths.begin(), paths.end());
        EXPECT_TRUE(this->burner->addFilesInOrder(paths));
    }
    this->finishRuns();
    EXPECT_EQ(this->paths(), expected);
}

TYPED_TEST(BothIngestionOrder, AnAddFilesAtTheSameTimeAppendsBehindTheFilesInOrder) {
    this->queue().hold();
    this->burner->addFilesInOrder({"/b.mp3", "/a.mp3"});
    this->addOne();
    this->queue().release();
    this->burner->addFiles({"/d.mp3", "/c.mp3"});
    this->finishRuns();
    EXPECT_THAT(this->paths(), ElementsAre("/b.mp3", "/a.mp3", "/c.mp3", "/d.mp3"));
}

TYPED_TEST(BothIngestionOrder, TheItemsAreASnapshotWithoutCopies) {
    this->compile({"/a.mp3", "/b.mp3"});
    const ContentList::Snapshot items = this->burner->items();
    this->burner->clearAll();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(*valueFor(*items[1]->properties(), kQuarnItemFilePathKey).asString(), "/b.mp3");
    EXPECT_TRUE(this->burner->items().empty());
}

TYPED_TEST(BothIngestionOrder, TheRecordedChangesNameTheRowsOfTheItems) {
    int announced = 0;
    this->burner->recordChanges([&] { ++announced; });
    this->compile({"/a.mp3", "/b.mp3"});
    const ContentList::Snapshot items = this->burner->items();
    const std::vector<ListChange> added = this->burner->takeChanges();
    ASSERT_EQ(added.size(), 1U);
    EXPECT_EQ(added[0].kind, ListChange::Kind::Inserted);
    EXPECT_THAT(added[0].rows, ElementsAre(0U, 1U));
    EXPECT_EQ(added[0].items, BurnItemList(items.begin(), items.end()));
    this->burner->moveBurnItem({1}, 0);
    this->burner->removeItem(items[0]);
    const std::vector<ListChange> edited = this->burner->takeChanges();
    ASSERT_EQ(edited.size(), 2U);
    EXPECT_EQ(edited[0].kind, ListChange::Kind::Moved);
    EXPECT_EQ(edited[0].to, 0U);
    EXPECT_EQ(edited[1].kind, ListChange::Kind::Removed);
    EXPECT_THAT(edited[1].rows, ElementsAre(1U));
    EXPECT_EQ(announced, 2);
}

TYPED_TEST(BothIngestionOrder, MovedItemsAreNamedRatherThanTheirRows) {
    this->compile({"/a.mp3", "/b.mp3", "/c.mp3"});
    const ContentList::Snapshot items = this->burner->items();
    this->burner->moveItems({items[2], items[0]}, items[1]);
    EXPECT_THAT(this->paths(), ElementsAre("/b.mp3", "/a.mp3", "/c.mp3"));
    this->burner->moveItems({items[2]}, nullptr);
    EXPECT_THAT(this->paths(), ElementsAre("/c.mp3", "/b.mp3", "/a.mp3"));
    this->burner->moveItems({items[0]}, this->makeItem());
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemDidSorted", "burnItemDidSorted"));
}

} // namespace
} // namespace quarner::testing
