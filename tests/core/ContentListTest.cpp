// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "quarner/front/ContentList.h"
#include "quarner/platform/DRTrack.h"

namespace quarner::testing {
namespace {

BurnItemRef item() { return std::make_shared<DRTrack>(); }

TEST(ContentList, ASnapshotStaysAsItWas) {
    ContentList list;
    const BurnItemRef first = item();
    list.append(first);
    const ContentList::Snapshot before = list.snapshot();
    list.append(item());
    const ContentList::Snapshot grown = list.snapshot();
    list.change([](BurnItemList& items) { items.clear(); });
    ASSERT_EQ(before.size(), 1U);
    EXPECT_EQ(before[0], first);
    EXPECT_EQ(std::distance(grown.begin(), grown.end()), 2);
    EXPECT_TRUE(list.snapshot().empty());
}

TEST(ContentList, SnapshotsAreEqualWhenNothingChangedBetweenThem) {
    ContentList list;
    list.append(item());
    const ContentList::Snapshot before = list.snapshot();
    EXPECT_EQ(list.snapshot(), before);
    list.append(item());
    EXPECT_NE(list.snapshot(), before);
    list.change([](BurnItemList& items) { items.pop_back(); });
    EXPECT_NE(list.snapshot(), before) << "the same items, but other ones in between";
}

TEST(ContentList, AnAppendNeverMovesTheItemsThatAreThere) {
    ContentList list;
    std::vector<const BurnItemRef*> places;
    for (std::size_t i = 0; i < 1'000; ++i) {
        list.append(item());
        places.push_back(&list.snapshot()[i]);
    }
    const ContentList::Snapshot all = list.snapshot();
    for (std::size_t i = 0; i < places.size(); ++i)
        ASSERT_EQ(&all[i], places[i]);
}

/// A list and, beside it, the same items in a vector.
class LongContentList : public ::testing::Test {
protected:
    void append() {
        items.push_back(item());
        list.append(items.back());
    }
    void removeAt(std::size_t index) {
        const BurnItemRef removed = items[index];
        std::erase(items, removed);
        EXPECT_TRUE(list.remove(removed));
        EXPECT_FALSE(list.contains(removed));
    }
    void expectSame() const {
        const ContentList::Snapshot now = list.snapshot();
        ASSERT_EQ(BurnItemList(now.begin(), now.end()), items);
        for (std::size_t i = 0; i < items.size(); ++i)
            ASSERT_EQ(now[i], items[i]);
    }

    ContentList list;
    BurnItemList items;
};

TEST_F(LongContentList, KeepsItsOrderThroughEveryKindOfChange) {
    std::minstd_rand random(7);
    for (int round = 0; round < 3'000; ++round) {
        if (items.empty() || random() % 5 != 0)
            append();
        else
            removeAt(random() % items.size());
        if (round % 500 == 0) {
            list.change([](BurnItemList& all) { std::reverse(all.begin(), all.end()); });
            std::reverse(items.begin(), items.end());
        }
    }
    expectSame();
    while (items.size() > 1)
        removeAt(random() % items.size());
    expectSame();
    append();
    expectSame();
}

TEST_F(LongContentList, AppendsAfterItsLastItemsWereRemoved) {
    for (int i = 0; i < 700; ++i)
        append();
    while (items.size() > 400)
        removeAt(items.size() - 1);
    const ContentList::Snapshot before = list.snapshot();
    const BurnItemList itemsBefore = items;
    for (int i = 0; i < 300; ++i)
        append();
    expectSame();
    EXPECT_EQ(BurnItemList(before.begin(), before.end()), itemsBefore);
}

TEST_F(LongContentList, ASnapshotKeepsWhatIsRemovedAfterwards) {
    for (int i = 0; i < 600; ++i)
        append();
    const ContentList::Snapshot before = list.snapshot();
    const BurnItemList itemsBefore = items;
    for (int i = 0; i < 600; ++i)
        removeAt(items.size() / 2);
    EXPECT_EQ(BurnItemList(before.begin(), before.end()), itemsBefore);
    EXPECT_TRUE(list.snapshot().empty());
}

TEST_F(LongContentList, RemovesEveryOccurrenceOfAnItem) {
    const BurnItemRef often = item();
    for (int i = 0; i < 300; ++i) {
        append();
        list.append(often);
    }
    EXPECT_TRUE(list.remove(often));
    expectSame();
    EXPECT_FALSE(list.remove(often));
}

TEST(ContentList, ARemovedItemIsLetGoOf) {
    ContentList list;
    BurnItemRef removed = item();
    const std::weak_ptr<const BurnItem> watch = removed;
    list.append(std::move(removed));
    list.append(item());
    list.change([](BurnItemList& items) { items.erase(items.begin()); });
    EXPECT_TRUE(watch.expired());
    const std::weak_ptr<const BurnItem> last = list.snapshot()[0];
    list.remove(last.lock());
    EXPECT_TRUE(last.expired());
}

TEST(ContentList, OneThreadReadsWhileOthersAppendAndChange) {
    ContentList list;
    std::atomic<int> writers = 2;
    const auto write = [&] {
        for (int i = 0; i < 500; ++i) {
            const BurnItemRef removed = item();
            list.append(removed);
            list.append(item());
            if (i % 50 == 0)
                list.change([](BurnItemList& items) { std::swap(items.front(), items.back()); });
            list.remove(removed);
        }
        --writers;
    };
    std::thread one(write);
    std::thread other(write);
    std::size_t longest = 0;
    while (writers > 0) {
        const ContentList::Snapshot items = list.snapshot();
        for (const BurnItemRef& present : items)
            ASSERT_NE(present, nullptr);
        ASSERT_GE(items.size() + 2, longest); // each writer has one that it removes
        longest = std::max(longest, items.size());
    }
    one.join();
    other.join();
    EXPECT_EQ(list.snapshot().size(), 1000U);
}

} // namespace
} // namespace quarner::testing
