// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <ostream>

#include "quarner/platform/DRFile.h"
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AudioListEditingTest : public AudioBurnerTest {
protected:
    /// The items A, B, C, D, E.
    void fill() { compileLetters("ABCDE"); }
    void compileLetters(const std::string& letters) {
        for (const char letter : letters) {
            auto track = trackOf(100, 150);
            track->setProperties({{kQuarnItemDisplayNameKey, std::string(1, letter)}});
            burner->_content.append(track);
        }
    }
    std::string letters() const {
        std::string text;
        for (std::uint64_t i = 0; i < count(); ++i) {
            const auto properties = burner->propertyOfBurnItem(burner->child(i, nullptr));
            text += *valueFor(*properties, kQuarnItemDisplayNameKey).asString();
        }
        return text;
    }
    BurnItemRef item(std::uint64_t index) const { return burner->child(index, nullptr); }
};

TEST_F(AudioListEditingTest, AnEmptyCompilationHasNoChildren) {
    EXPECT_EQ(burner->numberOfChildrenOfBurnItem(nullptr), 0U);
    EXPECT_EQ(burner->child(0, nullptr), nullptr);
}

TEST_F(AudioListEditingTest, ATrackHasNoChildren) {
    fill();
    EXPECT_EQ(burner->numberOfChildrenOfBurnItem(item(0)), 0U);
    EXPECT_EQ(burner->child(0, item(0)), nullptr);
}

TEST_F(AudioListEditingTest, TheRootHasTheTracksInOrderAndNullPastTheEnd) {
    fill();
    EXPECT_EQ(burner->numberOfChildrenOfBurnItem(nullptr), 5U);
    EXPECT_EQ(letters(), "ABCDE");
    EXPECT_EQ(item(5), nullptr);
    EXPECT_EQ(item(std::numeric_limits<std::uint64_t>::max()), nullptr);
}

TEST_F(AudioListEditingTest, ANullItemHasNoProperties) {
    EXPECT_EQ(burner->propertyOfBurnItem(nullptr), nullptr);
}

TEST_F(AudioListEditingTest, RemovingAnItemThatIsNotInTheListReportsNothing) {
    fill();
    burner->removeItem(std::make_shared<DRTrack>());
    burner->removeItem(nullptr);
    EXPECT_EQ(letters(), "ABCDE");
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(AudioListEditingTest, RemovingAnItemReportsItAfterwards) {
    fill();
    const BurnItemRef third = item(2);
    std::uint64_t countWhenReported = 0;
    delegate.whenCalled = [&](const std::string&) { countWhenReported = count(); };
    burner->removeItem(third);
    EXPECT_EQ(letters(), "ABDE");
    EXPECT_EQ(countWhenReported, 4U);
    EXPECT_THAT(delegate.deleted(), ElementsAre(third));
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemDidDelete"));
}

TEST_F(AudioListEditingTest, AnItemThatIsThereTwiceIsRemovedTwiceAndReportedOnce) {
    fill();
    const BurnItemRef first = item(0);
    burner->_content.append(first);
    burner->removeItem(first);
    EXPECT_EQ(letters(), "BCDE");
    EXPECT_THAT(delegate.deleted(), ElementsAre(first));
}

TEST_F(AudioListEditingTest, RemoveItemIgnoresWhatIsNoTrack) {
    const auto file = std::make_shared<DRFile>("/a.mp3");
    burner->_content.append(file);
    burner->removeItem(file);
    EXPECT_EQ(count(), 1U);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(AudioListEditingTest, ATrackOfADerivedClassIsATrack) {
    class LiveTrack : public DRTrack {
        std::string_view className() const override { return "LiveTrack"; }
    };
    const auto track = std::make_shared<LiveTrack>();
    burner->_content.append(track);
    burner->removeItem(track);
    EXPECT_EQ(count(), 0U);
}

TEST_F(AudioListEditingTest, RemoveItemsTakesItemsOfEveryKind) {
    const auto file = std::make_shared<DRFile>("/a.mp3");
    burner->_content.append(file);
    burner->removeItems({file});
    EXPECT_EQ(count(), 0U);
}

TEST_F(AudioListEditingTest, RemoveItemsReportsTheListThatItWasGiven) {
    fill();
    const BurnItemList items = {item(3), std::make_shared<DRTrack>(), nullptr, item(0), item(0)};
    burner->removeItems(items);
    EXPECT_EQ(letters(), "BCE");
    EXPECT_THAT(delegate.deletedLists(), ElementsAre(items));
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemsDidDelete(5)"));
}

TEST_F(AudioListEditingTest, RemoveItemsReportsAnEmptyListToo) {
    burner->removeItems({});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemsDidDelete(0)"));
    EXPECT_THAT(delegate.deletedLists(), ElementsAre(IsEmpty()));
}

TEST_F(AudioListEditingTest, MovingInAnEmptyCompilationReportsNothing) {
    burner->moveBurnItem({}, 0);
    burner->moveBurnItem({0}, 0);
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(AudioListEditingTest, AnIndexOutsideTheListMovesAndReportsNothing) {
    fill();
    burner->moveBurnItem({0, 5}, 3);
    burner->moveBurnItem({std::numeric_limits<std::uint64_t>::max()}, -1);
    EXPECT_EQ(letters(), "ABCDE");
    EXPECT_THAT(delegate.calls(), IsEmpty());
}

TEST_F(AudioListEditingTest, MovingNothingStillReports) {
    fill();
    burner->moveBurnItem({}, 2);
    EXPECT_EQ(letters(), "ABCDE");
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemDidSorted"));
}

TEST_F(AudioListEditingTest, AMoveIsReportedAfterItWasMade) {
    fill();
    std::string lettersWhenReported;
    delegate.whenCalled = [&](const std::string&) { lettersWhenReported = letters(); };
    burner->moveBurnItem({0}, 3);
    EXPECT_EQ(lettersWhenReported, "BCADE");
}

struct Move {
    std::set<std::uint64_t> rows;
    std::int64_t destination;
    const char* result;

    friend void PrintTo(const Move& move, std::ostream* out) {
        for (const std::uint64_t row : move.rows)
            *out << row << ' ';
        *out << "to " << move.destination;
    }
};

class MoveTest : public AudioListEditingTest, public ::testing::WithParamInterface<Move> {};

TEST_P(MoveTest, PutsTheRowsBeforeTheDestination) {
    fill();
    burner->moveBurnItem(GetParam().rows, GetParam().destination);
    EXPECT_EQ(letters(), GetParam().result);
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemDidSorted"));
}

constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t mostNegative = std::numeric_limits<std::int64_t>::min();

INSTANTIATE_TEST_SUITE_P(
    AudioListEditing, MoveTest,
    ::testing::Values(Move{{0}, 3, "BCADE"}, Move{{3}, 1, "ADBCE"}, Move{{0, 2}, 4, "BDACE"},
                      Move{{1, 3}, 5, "ACEBD"}, Move{{1, 3}, -1, "ACEBD"}, Move{{1, 2}, 2, "ABCDE"},
                      Move{{1, 2}, 1, "ABCDE"}, Move{{0, 4}, 2, "BAECD"}, Move{{3, 4}, 0, "DEABC"},
                      Move{{0}, farthest, "BCDEA"}, Move{{0}, mostNegative, "BCDEA"},
                      Move{{0, 1, 2, 3, 4}, 5, "ABCDE"}, Move{{0, 1, 2, 3, 4}, 2, "ABCDE"},
                      Move{{0, 2}, 2, "ABCDE"}, Move{{1, 4}, 1, "ABCDE"}, Move{{4}, 5, "ABCDE"},
                      Move{{2}, 3, "ABCDE"}));

TEST_F(AudioListEditingTest, TheBurnFollowsTheNewOrder) {
    fill();
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    burner->moveBurnItem({4}, 0);
    ASSERT_EQ(letters(), "EABCD");
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    const DRLayout layout = platform.lastBurn()->layout();
    ASSERT_EQ(layout.size(), 5U);
    for (std::uint64_t i = 0; i < 5; ++i) {
        EXPECT_EQ(layout[i], item(i));
        EXPECT_EQ(burner->_textBlock->object(DRCDTextTitleKey, static_cast<std::int64_t>(i) + 1),
                  Value(std::string(1, letters()[i])));
    }
}

TEST_F(AudioListEditingTest, EditingLeavesTheEstimateAlone) {
    fill();
    burner->_estimateTotalLength = 7;
    burner->removeItem(item(0));
    burner->removeItems({item(0)});
    burner->moveBurnItem({0}, 2);
    EXPECT_EQ(burner->_estimateTotalLength, 7U);
}

} // namespace
} // namespace quarner::testing
