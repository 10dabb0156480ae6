// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

TEST(ContentList, AnAppendHardlyEverCopiesTheItems) {
    ContentList list;
    const BurnItemRef* place = nullptr;
    int copies = 0;
    for (int i = 0; i < 10'000; ++i) {
        list.append(item());
        const BurnItemRef* now = list.snapshot().begin();
        copies += now == place ? 0 : 1;
        place = now;
    }
    EXPECT_EQ(list.snapshot().size(), 10'000U);
    EXPECT_LT(copies, 20) << "as often as the list doubles";
}

TEST(ContentList, ARemovedItemIsLetGoOf) {
    ContentList list;
    BurnItemRef removed = item();
    const std::weak_ptr<const BurnItem> watch = removed;
    list.append(std::move(removed));
    list.append(item());
    list.change([](BurnItemList& items) { items.erase(items.begin()); });
    EXPECT_TRUE(watch.expired());
}

TEST(ContentList, OneThreadReadsWhileOthersAppendAndChange) {
    ContentList list;
    std::atomic<int> writers = 2;
    const auto write = [&] {
        for (int i = 0; i < 500; ++i) {
            list.append(item());
            if (i % 50 == 0)
                list.change([](BurnItemList& items) { std::swap(items.front(), items.back()); });
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
        ASSERT_GE(items.size(), longest);
        longest = items.size();
    }
    one.join();
    other.join();
    EXPECT_EQ(list.snapshot().size(), 1000U);
}

} // namespace
} // namespace quarner::testing
