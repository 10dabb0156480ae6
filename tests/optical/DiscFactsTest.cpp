// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "adapters/drive/Libburn.h"
#include "tests/optical/FactsOf.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using testing::ElementsAre;

using Profiles = std::initializer_list<std::uint16_t>;

Medium twoSessions(Medium::Kind kind, Medium::State state) {
    Medium medium = Medium::audioCD({300, 400});
    medium.addSession({500});
    medium.kind = kind;
    medium.state = state;
    return medium;
}

class DiscFactsTest : public testing::Test, public OpticalStage {
protected:
    std::string factsOfForeign(std::uint16_t profile) {
        insert(Medium::foreign(profile, 5000));
        return factsOf(*drive);
    }
    Array speeds() {
        const Dictionary media = mediaOf(*drive);
        const Array* found = valueFor(media, DRDeviceBurnSpeedsKey).asArray();
        return found == nullptr ? Array() : *found;
    }
};

TEST_F(DiscFactsTest, DiscsThatAreNoCDsHaveATypeAndASize) {
    EXPECT_EQ(factsOfForeign(0x10), "DVDROM 5000/0");
    for (const std::uint16_t recordable : Profiles{0x11, 0x15, 0x1b, 0x2b})
        EXPECT_EQ(factsOfForeign(recordable), "DVDR 5000/0") << recordable;
    EXPECT_EQ(factsOfForeign(0x14), "DVDRW 5000/0");
    for (const std::uint16_t blue : Profiles{0x40, 0x41, 0x42})
        EXPECT_EQ(factsOfForeign(blue), "BD 5000/0") << blue;
}

TEST_F(DiscFactsTest, DiscsThatAreWrittenAnywhereAreOverwritable) {
    for (const std::uint16_t profile : Profiles{0x12, 0x13, 0x1a}) {
        factsOfForeign(profile);
        EXPECT_EQ(typeOf(*drive), DRDeviceMediaTypeDVDRW) << profile;
        EXPECT_TRUE(drive->mediaIsOverwritable()) << profile;
    }
    factsOfForeign(0x43);
    EXPECT_EQ(typeOf(*drive), DRDeviceMediaTypeBD);
    EXPECT_TRUE(drive->mediaIsOverwritable());
}

TEST_F(DiscFactsTest, ADiscThatCanNeitherBeReadNorWrittenHasNothingOnIt) {
    EXPECT_EQ(factsOfForeign(0x50), "Unknown 0/0");
    EXPECT_TRUE(drive->mediaIsPresent());
    EXPECT_EQ(factsOfForeign(0x16), "DVDR 0/0");
    EXPECT_EQ(factsOfForeign(0x17), "DVDRW 0/0");
}

TEST_F(DiscFactsTest, OfSeveralSessionsTheLastOneEndsWhatIsUsed) {
    constexpr std::uint32_t firstEnd = 300 + 150 + 400;
    constexpr std::uint32_t betweenSessions = 6750 + 4500 + 150;
    constexpr std::uint32_t lastEnd = firstEnd + betweenSessions + 500;
    insert(twoSessions(Medium::Kind::CDR, Medium::State::Closed));
    EXPECT_EQ(factsOf(*drive), "CDR " + std::to_string(lastEnd) + "/0");
    insert(twoSessions(Medium::Kind::CDR, Medium::State::Appendable));
    const std::uint32_t next = lastEnd + betweenSessions;
    EXPECT_EQ(factsOf(*drive),
              "CDR appendable " + std::to_string(next) + '/' + std::to_string(359'847 - next));
}

TEST_F(DiscFactsTest, ARewritableDiscOfUnknownSizeHasTheRoomThatIsLeft) {
    Medium medium = twoSessions(Medium::Kind::CDRW, Medium::State::Appendable);
    insert(medium);
    EXPECT_EQ(blocksOf(*drive, DRDeviceMediaBlocksFreeKey), 359'847U);
    medium.hasPreGroove = false;
    insert(medium);
    EXPECT_EQ(blocksOf(*drive, DRDeviceMediaBlocksFreeKey),
              359'847U - blocksOf(*drive, DRDeviceMediaBlocksUsedKey));
    medium.state = Medium::State::Closed;
    insert(medium);
    EXPECT_EQ(blocksOf(*drive, DRDeviceMediaBlocksFreeKey), 0U);
}

TEST_F(DiscFactsTest, SpeedsAreThoseOfBlocksOfTheKindOfDisc) {
    EXPECT_THAT(speeds(), ElementsAre(Value(300), Value(600), Value(1200), Value(1800)));
    insert(Medium::blankDVD());
    EXPECT_THAT(speeds(), ElementsAre(Value(345), Value(689), Value(1378), Value(2067)));
}

class SpeedsTest : public testing::Test, public OpticalStage {
protected:
    SpeedsTest() : OpticalStage({.writeSpeeds = {4234, 4234, 4233, 706, 706}}) {}
};

TEST_F(SpeedsTest, ASpeedIsToldOnce) {
    const Dictionary media = mediaOf(*drive);
    EXPECT_EQ(valueFor(media, DRDeviceBurnSpeedsKey), Value(Array{300, 1800}));
}

TEST(StartOf, AnEntryIsItsSectorWhereItIsValidAndItsTimeOtherwise) {
    burn::burn_toc_entry entry = {};
    entry.pmin = 1; // 75 frames a second, and two seconds before sector 0
    entry.psec = 4;
    entry.pframe = 5;
    EXPECT_EQ(startOf(entry), 62 * 75 + 5);
    entry.start_lba = 400'000;
    entry.extensions_valid = 1;
    EXPECT_EQ(startOf(entry), 400'000);
    entry.extensions_valid = 2;
    EXPECT_EQ(startOf(entry), 62 * 75 + 5);
}

} // namespace
} // namespace quarner
