// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "quarner/front/ContentList.h"
#include "quarner/platform/DRTrack.h"

namespace quarner::testing {
namespace {

/// A list of items that are called by letters.
class ContentPlaces : public ::testing::Test {
protected:
    explicit ContentPlaces(const std::string& letters = "ABCDE") {
        for (const char letter : letters)
            list.append(newItem(letter));
    }

    static BurnItemRef newItem(char letter) {
        auto track = std::make_shared<DRTrack>();
        track->path = letter;
        return track;
    }
    BurnItemRef item(char letter) const {
        const ContentList::Snapshot items = list.snapshot();
        return *std::find_if(items.begin(), items.end(),
                             [&](const BurnItemRef& each) { return letterOf(each) == letter; });
    }
    static char letterOf(const BurnItemRef& each) {
        return dynamic_cast<const DRTrack&>(*each).path[0];
    }
    std::string letters() const {
        std::string text;
        for (const BurnItemRef& each : list.snapshot())
            text += letterOf(each);
        return text;
    }
    void insert(const ContentList::Place& place, const std::string& letters) {
        for (const char letter : letters)
            list.insert(place, newItem(letter));
    }

    ContentList list;
};

TEST_F(ContentPlaces, ItemsAreInsertedOneBehindTheOther) {
    insert(list.placeBefore(2), "12");
    EXPECT_EQ(letters(), "AB12CDE");
    insert(list.placeBefore(0), "3");
    insert(list.placeBefore(8), "4");
    EXPECT_EQ(letters(), "3AB12CDE4");
    insert(list.placeBehind(nullptr), "5");
    insert(list.placeBehind(item('D')), "6");
    insert(list.placeBehind(newItem('X')), "7");
    EXPECT_EQ(letters(), "53AB12CD6E47");
}

TEST_F(ContentPlaces, WhatIsAppendedComesBehindAPlaceAtTheEnd) {
    const auto place = list.placeBefore(5);
    insert(place, "1");
    list.append(newItem('X'));
    insert(place, "2");
    EXPECT_EQ(letters(), "ABCDE12X");
}

TEST_F(ContentPlaces, PlacesAtTheEndKeepTheOrderInWhichTheyWereMade) {
    const auto first = list.placeBefore(99);
    const auto second = list.placeBefore(99);
    insert(second, "3");
    insert(first, "1");
    insert(second, "4");
    insert(first, "2");
    EXPECT_EQ(letters(), "ABCDE1234");
}

TEST_F(ContentPlaces, APlaceBehindAnInsertedItemIsBehindTheItemsThatFollowItThere) {
    const auto first = list.placeBefore(2);
    insert(first, "1");
    const auto second = list.placeBehind(item('1'));
    insert(second, "3");
    insert(first, "2");
    EXPECT_EQ(letters(), "AB123CDE");
}

TEST_F(ContentPlaces, APlaceMadeLaterBehindTheSameItemIsRightBehindIt) {
    const auto first = list.placeBefore(2);
    const auto second = list.placeBefore(2);
    insert(first, "1");
    insert(second, "2");
    insert(first, "3");
    EXPECT_EQ(letters(), "AB213CDE");
}

TEST_F(ContentPlaces, APlaceAmongTheItemsOfAnotherOnePartsThem) {
    const auto first = list.placeBefore(2);
    insert(first, "12");
    const auto second = list.placeBehind(item('1'));
    insert(second, "X");
    insert(first, "3");
    insert(second, "Y");
    EXPECT_EQ(letters(), "AB1XY23CDE");
}

TEST_F(ContentPlaces, RemovedItemsLeaveThePlaceBehindTheOneBefore) {
    const auto place = list.placeBefore(3);
    insert(place, "1");
    list.remove(item('1'));
    list.remove(item('C'));
    insert(place, "2");
    EXPECT_EQ(letters(), "AB2DE");
    list.removeAll({item('A'), item('B'), item('2')});
    insert(place, "3");
    EXPECT_EQ(letters(), "3DE");
    list.clear();
    insert(place, "4");
    EXPECT_EQ(letters(), "4");
}

TEST_F(ContentPlaces, AMovedItemLeavesThePlaceBehindTheOneBefore) {
    const auto place = list.placeBefore(3);
    insert(place, "12");
    EXPECT_TRUE(list.move({4}, 0));
    insert(place, "3");
    EXPECT_EQ(letters(), "2ABC13DE");
    EXPECT_TRUE(list.moveBehind({item('A')}, item('E')));
    insert(place, "4");
    EXPECT_EQ(letters(), "2BC134DEA");
}

TEST_F(ContentPlaces, AnItemMovedToThePlaceComesBehindIt) {
    const auto place = list.placeBefore(3);
    insert(place, "1");
    list.moveBehind({item('E')}, item('1'));
    list.move({0}, 4);
    insert(place, "2");
    EXPECT_EQ(letters(), "BC12AED");
}

TEST_F(ContentPlaces, AnyOtherChangeLeavesThePlaceBehindTheLastItemBeforeItThatIsLeft) {
    const auto place = list.placeBefore(3);
    list.change([](BurnItemList& items) {
        items.erase(items.begin() + 2);
        std::reverse(items.begin(), items.end());
    });
    insert(place, "1");
    EXPECT_EQ(letters(), "EDB1A");
}

TEST_F(ContentPlaces, AnItemThatMovesStandsForTheOneBeforeItThatDoesNot) {
    EXPECT_TRUE(list.moveBehind({item('E'), item('C'), item('B')}, item('C')));
    EXPECT_EQ(letters(), "ABCED");
    EXPECT_TRUE(list.moveBehind({item('A'), item('D')}, nullptr));
    EXPECT_EQ(letters(), "ADBCE");
    EXPECT_FALSE(list.moveBehind({item('A')}, newItem('X')));
    EXPECT_EQ(letters(), "ADBCE");
}

TEST(LongContentPlaces, ManyItemsMoveAroundAPlaceInALongList) {
    ContentList list;
    for (int i = 0; i < 1'000; ++i)
        list.append(std::make_shared<DRTrack>());
    const ContentList::Snapshot before = list.snapshot();
    const auto place = list.placeBefore(501);
    std::unordered_set<BurnItemRef> even;
    for (std::size_t i = 0; i < before.size(); i += 2)
        even.insert(before[i]);
    EXPECT_TRUE(list.moveBehind(even, nullptr));
    const BurnItemRef inserted = std::make_shared<DRTrack>();
    list.insert(place, inserted);
    const ContentList::Snapshot after = list.snapshot();
    for (std::size_t i = 0; i < 500; ++i)
        ASSERT_EQ(after[i], before[2 * i]);
    EXPECT_EQ(after[749], before[499]);
    EXPECT_EQ(after[750], inserted) << "behind the last item before it that has not moved";
    EXPECT_EQ(after[751], before[501]);
    list.removeAll(even);
    EXPECT_EQ(list.snapshot().size(), 501U);
    EXPECT_EQ(list.snapshot()[250], inserted);
}

/// A copy of a list that follows its recorded changes.
class Follower {
public:
    void follow(ContentList& list) {
        for (const ListChange& change : list.takeChanges())
            apply(change);
    }
    const BurnItemList& items() const { return _items; }

private:
    void apply(const ListChange& change) {
        ASSERT_EQ(change.rows.size(), change.items.size());
        ASSERT_TRUE(std::is_sorted(change.rows.begin(), change.rows.end()));
        if (change.kind != ListChange::Kind::Inserted)
            erase(change);
        std::vector<std::uint64_t> rows = change.rows;
        if (change.kind == ListChange::Kind::Moved)
            std::iota(rows.begin(), rows.end(), change.to);
        if (change.kind != ListChange::Kind::Removed)
            for (std::size_t i = 0; i < rows.size(); ++i)
                _items.insert(_items.begin() + static_cast<std::ptrdiff_t>(rows[i]),
                              change.items[i]);
    }
    void erase(const ListChange& change) {
        for (std::size_t i = change.rows.size(); i-- > 0;) {
            const auto row = _items.begin() + static_cast<std::ptrdiff_t>(change.rows[i]);
            ASSERT_EQ(*row, change.items[i]);
            _items.erase(row);
        }
    }

    BurnItemList _items;
};

/// Changes a list at random, and a vector in the same way.
class RandomEdits {
public:
    explicit RandomEdits(ContentList& list) : _list(list) {}

    void edit() {
        switch (_random() % 16) {
        case 0:
            _list.remove(any());
            break;
        case 1:
            _list.moveBehind({any(), any(), any()}, _random() % 4 == 0 ? nullptr : any());
            break;
        case 2:
            _list.removeAll({any(), any(), any()});
            break;
        case 3:
            move();
            break;
        case 4:
            _places[_random() % _places.size()] = _list.placeBehind(any());
            break;
        default:
            insert();
        }
    }

private:
    static BurnItemRef newItem() { return std::make_shared<DRTrack>(); }
    BurnItemRef any() {
        const ContentList::Snapshot items = _list.snapshot();
        return items.empty() ? newItem() : items[_random() % items.size()];
    }
    void move() {
        const std::size_t size = _list.snapshot().size();
        if (size > 0)
            _list.move({_random() % size, _random() % size}, _random() % (size + 1));
    }
    void insert() {
        ContentList::Place& place = _places[_random() % _places.size()];
        if (!place)
            place = _list.placeBefore(_random() % (_list.snapshot().size() + 1));
        _list.insert(place, newItem());
    }

    ContentList& _list;
    std::minstd_rand _random{11};
    std::vector<ContentList::Place> _places = std::vector<ContentList::Place>(5);
};

TEST(ListChanges, ACopyThatFollowsThemIsTheList) {
    ContentList list;
    Follower follower;
    list.recordChanges([] {});
    RandomEdits edits(list);
    for (int i = 0; i < 10'000; ++i) {
        edits.edit();
        if (i % 97 != 0)
            continue;
        follower.follow(list);
        const ContentList::Snapshot now = list.snapshot();
        ASSERT_EQ(follower.items(), BurnItemList(now.begin(), now.end()));
        for (std::size_t row = 0; row < now.size(); ++row)
            ASSERT_EQ(now[row], follower.items()[row]);
    }
    EXPECT_GT(list.snapshot().size(), 1'000U) << "no chunk was full";
    list.change([](BurnItemList& items) { std::reverse(items.begin(), items.end()); });
    list.clear();
    follower.follow(list);
    EXPECT_TRUE(follower.items().empty());
}

TEST(ListChanges, ItemsInsertedInARowAreOneChange) {
    ContentList list;
    list.recordChanges([] {});
    list.append(std::make_shared<DRTrack>());
    const auto place = list.placeBefore(1);
    for (int i = 0; i < 3; ++i)
        list.insert(place, std::make_shared<DRTrack>());
    const std::vector<ListChange> changes = list.takeChanges();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].rows, (std::vector<std::uint64_t>{0, 1, 2, 3}));
    EXPECT_TRUE(list.takeChanges().empty());
}

TEST(ListChanges, WhatChangesNothingIsNotRecorded) {
    ContentList list;
    list.append(std::make_shared<DRTrack>());
    list.append(std::make_shared<DRTrack>());
    list.recordChanges([] {});
    list.move({0}, 1);
    list.move({1}, 9);
    list.moveBehind({list.snapshot()[0]}, nullptr);
    list.remove(std::make_shared<DRTrack>());
    list.removeAll({nullptr});
    EXPECT_TRUE(list.takeChanges().empty());
}

TEST(ListChanges, TheFirstOneIsAnnouncedOutsideTheLock) {
    ContentList list;
    int announced = 0;
    list.recordChanges([&] {
        ++announced;
        EXPECT_EQ(list.snapshot().size(), 1U);
    });
    list.append(std::make_shared<DRTrack>());
    list.append(std::make_shared<DRTrack>());
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(list.takeChanges().size(), 1U);
    list.recordChanges([&] { ++announced; });
    list.clear();
    EXPECT_EQ(announced, 2);
    list.recordChanges(nullptr);
    list.append(std::make_shared<DRTrack>());
    EXPECT_TRUE(list.takeChanges().empty());
    EXPECT_EQ(announced, 2);
}

TEST(ListChanges, OneThreadTakesThemWhileOthersInsertAndRemove) {
    ContentList list;
    Follower follower;
    list.recordChanges([] {});
    const auto write = [&] {
        const ContentList::Place place = list.placeBefore(0);
        for (int i = 0; i < 400; ++i) {
            const BurnItemRef item = std::make_shared<DRTrack>();
            list.insert(place, item);
            if (i % 3 == 0)
                list.remove(item);
        }
    };
    std::thread first(write);
    std::thread second(write);
    while (list.snapshot().size() < 500)
        follower.follow(list);
    first.join();
    second.join();
    follower.follow(list);
    const ContentList::Snapshot now = list.snapshot();
    EXPECT_EQ(follower.items(), BurnItemList(now.begin(), now.end()));
}

} // namespace
} // namespace quarner::testing
