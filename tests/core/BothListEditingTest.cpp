// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <typename Burner>
class BothListEditing : public BurnerTest<Burner> {
protected:
    /// The items A, B, C, D, E.
    void fill() {
        for (const char* letter : {"A", "B", "C", "D", "E"})
            this->burner->_content.append(this->makeItem(letter));
    }
    std::string letters() const {
        std::string text;
        for (std::uint64_t i = 0; i < this->count(); ++i) {
            const auto properties = this->burner->propertyOfBurnItem(item(i));
            text += *valueFor(*properties, kQuarnItemDisplayNameKey).asString();
        }
        return text;
    }
    BurnItemRef item(std::uint64_t index) const { return this->burner->child(index, nullptr); }
};

TYPED_TEST_SUITE(BothListEditing, Burners, BurnerNames);

TYPED_TEST(BothListEditing, AnEmptyCompilationHasNoChildren) {
    EXPECT_EQ(this->burner->numberOfChildrenOfBurnItem(nullptr), 0U);
    EXPECT_EQ(this->burner->child(0, nullptr), nullptr);
}

TYPED_TEST(BothListEditing, AnItemHasNoChildren) {
    this->fill();
    EXPECT_EQ(this->burner->numberOfChildrenOfBurnItem(this->item(0)), 0U);
    EXPECT_EQ(this->burner->child(0, this->item(0)), nullptr);
}

TYPED_TEST(BothListEditing, TheRootHasTheItemsInOrderAndNullPastTheEnd) {
    this->fill();
    EXPECT_EQ(this->burner->numberOfChildrenOfBurnItem(nullptr), 5U);
    EXPECT_EQ(this->letters(), "ABCDE");
    EXPECT_EQ(this->item(5), nullptr);
    EXPECT_EQ(this->item(std::numeric_limits<std::uint64_t>::max()), nullptr);
}

TYPED_TEST(BothListEditing, ANullItemHasNoProperties) {
    EXPECT_EQ(this->burner->propertyOfBurnItem(nullptr), nullptr);
}

TYPED_TEST(BothListEditing, RemovingAnItemThatIsNotInTheListReportsNothing) {
    this->fill();
    this->burner->removeItem(this->makeItem());
    this->burner->removeItem(nullptr);
    EXPECT_EQ(this->letters(), "ABCDE");
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothListEditing, RemovingAnItemReportsItAfterwards) {
    this->fill();
    const BurnItemRef third = this->item(2);
    std::uint64_t countWhenReported = 0;
    this->delegate.whenCalled = [&](const std::string&) { countWhenReported = this->count(); };
    this->burner->removeItem(third);
    EXPECT_EQ(this->letters(), "ABDE");
    EXPECT_EQ(countWhenReported, 4U);
    EXPECT_THAT(this->delegate.deleted(), ElementsAre(third));
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemDidDelete"));
}

TYPED_TEST(BothListEditing, AnItemThatIsThereTwiceIsRemovedTwiceAndReportedOnce) {
    this->fill();
    const BurnItemRef first = this->item(0);
    this->burner->_content.append(first);
    this->burner->removeItem(first);
    EXPECT_EQ(this->letters(), "BCDE");
    EXPECT_THAT(this->delegate.deleted(), ElementsAre(first));
}

TYPED_TEST(BothListEditing, RemoveItemsReportsTheListThatItWasGiven) {
    this->fill();
    const BurnItemList items = {this->item(3), this->makeItem(), nullptr, this->item(0),
                                this->item(0)};
    this->burner->removeItems(items);
    EXPECT_EQ(this->letters(), "BCE");
    EXPECT_THAT(this->delegate.deletedLists(), ElementsAre(items));
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemsDidDelete(5)"));
}

TYPED_TEST(BothListEditing, RemoveItemsReportsAnEmptyListToo) {
    this->burner->removeItems({});
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemsDidDelete(0)"));
    EXPECT_THAT(this->delegate.deletedLists(), ElementsAre(IsEmpty()));
}

TYPED_TEST(BothListEditing, MovingInAnEmptyCompilationReportsNothing) {
    this->burner->moveBurnItem({}, 0);
    this->burner->moveBurnItem({0}, 0);
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothListEditing, AnIndexOutsideTheListMovesAndReportsNothing) {
    this->fill();
    this->burner->moveBurnItem({0, 5}, 3);
    this->burner->moveBurnItem({std::numeric_limits<std::uint64_t>::max()}, -1);
    EXPECT_EQ(this->letters(), "ABCDE");
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothListEditing, MovingNothingStillReports) {
    this->fill();
    this->burner->moveBurnItem({}, 2);
    EXPECT_EQ(this->letters(), "ABCDE");
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemDidSorted"));
}

TYPED_TEST(BothListEditing, AMoveIsReportedAfterItWasMade) {
    this->fill();
    std::string lettersWhenReported;
    this->delegate.whenCalled = [&](const std::string&) { lettersWhenReported = this->letters(); };
    this->burner->moveBurnItem({0}, 3);
    EXPECT_EQ(lettersWhenReported, "BCADE");
}

TYPED_TEST(BothListEditing, EditingLeavesTheEstimateAlone) {
    this->fill();
    this->burner->_estimateTotalLength = 7;
    this->burner->removeItem(this->item(0));
    this->burner->removeItems({this->item(0)});
    this->burner->moveBurnItem({0}, 2);
    EXPECT_EQ(this->burner->_estimateTotalLength, 7U);
}

struct Move {
    std::set<std::uint64_t> rows;
    std::int64_t destination;
    const char* result;
};

constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t mostNegative = std::numeric_limits<std::int64_t>::min();

const std::vector<Move> moves = {Move{{0}, 3, "BCADE"},
                                 Move{{3}, 1, "ADBCE"},
                                 Move{{0, 2}, 4, "BDACE"},
                                 Move{{1, 3}, 5, "ACEBD"},
                                 Move{{1, 3}, -1, "ACEBD"},
                                 Move{{1, 2}, 2, "ABCDE"},
                                 Move{{1, 2}, 1, "ABCDE"},
                                 Move{{0, 4}, 2, "BAECD"},
                                 Move{{3, 4}, 0, "DEABC"},
                                 Move{{0}, farthest, "BCDEA"},
                                 Move{{0}, mostNegative, "BCDEA"},
                                 Move{{0, 1, 2, 3, 4}, 5, "ABCDE"},
                                 Move{{0, 1, 2, 3, 4}, 2, "ABCDE"},
                                 Move{{0, 2}, 2, "ABCDE"},
                                 Move{{1, 4}, 1, "ABCDE"},
                                 Move{{4}, 5, "ABCDE"},
                                 Move{{2}, 3, "ABCDE"}};

TYPED_TEST(BothListEditing, AMovePutsTheRowsBeforeTheDestination) {
    for (const Move& move : moves) {
        SCOPED_TRACE(::testing::PrintToString(move.rows) + " to " +
                     std::to_string(move.destination));
        this->burner->clearAll();
        this->fill();
        this->delegate.forget();
        this->burner->moveBurnItem(move.rows, move.destination);
        EXPECT_EQ(this->letters(), move.result);
        EXPECT_THAT(this->delegate.calls(), ElementsAre("burnItemDidSorted"));
    }
}

} // namespace
} // namespace quarner::testing
