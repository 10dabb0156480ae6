// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRFile.h"
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::IsEmpty;

class AudioListEditingTest : public AudioBurnerTest {
protected:
    /// The items A, B, C, D, E.
    void fill() {
        for (const char* letter : {"A", "B", "C", "D", "E"})
            burner->_content.append(makeItem(letter));
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

TEST_F(AudioListEditingTest, TheBurnFollowsTheNewOrder) {
    fill();
    platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    burner->moveBurnItem({4}, 0);
    ASSERT_EQ(letters(), "EABCD");
    burner->burnWithDevice(QuarnerDevice("Writer"), std::nullopt);
    const DRLayout layout = platform.lastBurn()->layout();
    ASSERT_EQ(layout.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(layout[i], item(i));
        EXPECT_EQ(burner->_textBlock->object(DRCDTextTitleKey, static_cast<std::int64_t>(i) + 1),
                  Value(std::string(1, letters()[i])));
    }
}

} // namespace
} // namespace quarner::testing
