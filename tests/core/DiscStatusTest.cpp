// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include <quarner/scripted.h>

#include "quarner/quarner.h"

namespace quarner::testing {
namespace {

class DiscStatusTest : public ::testing::Test {
protected:
    /// A handle on a drive with this disc.
    QuarnerDevice& handleOn(DiscScript disc) {
        platform.addDrive({.name = "Drive", .disc = std::move(disc)});
        _handle = std::make_unique<QuarnerDevice>("Drive");
        return *_handle;
    }

    ScriptedPlatform platform;

private:
    std::unique_ptr<QuarnerDevice> _handle;
};

TEST_F(DiscStatusTest, TimesDropTheirFrames) {
    const DRMSF time = DRMSF::msfWithFrames((12 * 60 + 34) * 75 + 74);
    const QuarnerDevice& handle = handleOn({.spaceUsed = time});
    EXPECT_EQ(handle.usedTimeOfDisc(), 754U);
    EXPECT_EQ(handle.stringForUsedTimeOfDisc(), "00:12:34");
}

TEST_F(DiscStatusTest, FreeTimeIsReadFromTheDrive) {
    const QuarnerDevice& handle = handleOn({.spaceFree = DRMSF::msfWithFrames(359'847)});
    EXPECT_EQ(handle.freeTimeOfDisc(), 4797U);
    EXPECT_EQ(handle.stringForFreeTimeOfDisc(), "01:19:57");
}

TEST_F(DiscStatusTest, TheLongestTimeIsNotCut) {
    constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(handleOn({.spaceFree = DRMSF::msfWithFrames(most)}).freeTimeOfDisc(), most / 75U);
}

TEST_F(DiscStatusTest, SizesAreBlocksOf2048Bytes) {
    const QuarnerDevice& handle = handleOn({.blocksUsed = 512, .blocksFree = 359'847});
    EXPECT_EQ(handle.freeSizeOfDisc(), 736'966'656U);
    EXPECT_EQ(handle.stringForFreeSizeOfDisc(), "702.8 MB");
    EXPECT_EQ(handle.usedSizeOfDisc(), 1'048'576U);
    EXPECT_EQ(handle.stringForUsedSizeOfDisc(), "1 MB");
}

TEST_F(DiscStatusTest, SizesAreReckonedInSixtyFourBits) {
    const QuarnerDevice& handle = handleOn({.blocksFree = 0x100000000ULL});
    EXPECT_EQ(handle.freeSizeOfDisc(), 0x80000000000ULL);
}

TEST_F(DiscStatusTest, TimesAndSizesHaveNothingToDoWithOneAnother) {
    const QuarnerDevice& handle = handleOn({.spaceUsed = DRMSF::msfWithFrames(75),
                                            .spaceFree = DRMSF::msfWithFrames(150),
                                            .blocksUsed = 10,
                                            .blocksFree = 20});
    EXPECT_EQ(handle.usedTimeOfDisc(), 1U);
    EXPECT_EQ(handle.freeTimeOfDisc(), 2U);
    EXPECT_EQ(handle.usedSizeOfDisc(), 20480U);
    EXPECT_EQ(handle.freeSizeOfDisc(), 40960U);
}

TEST_F(DiscStatusTest, WithoutMediaInformationOnlyTheTimesAreKnown) {
    const QuarnerDevice& handle =
        handleOn({.spaceUsed = DRMSF::msfWithFrames(750), .hasMediaInfo = false});
    EXPECT_EQ(handle.usedSizeOfDisc(), 0U);
    EXPECT_EQ(handle.freeSizeOfDisc(), 0U);
    EXPECT_EQ(handle.availableBurnSpeeds(), std::nullopt);
    EXPECT_FALSE(handle.isCDDisc());
    EXPECT_EQ(handle.usedTimeOfDisc(), 10U);
    EXPECT_EQ(handle.freeTimeOfDisc(), 4797U);
}

TEST_F(DiscStatusTest, MissingEntriesReadAsNeutral) {
    const QuarnerDevice& handle = handleOn({.spaceUsed = std::nullopt,
                                            .spaceFree = std::nullopt,
                                            .blocksUsed = std::nullopt,
                                            .blocksFree = std::nullopt,
                                            .speeds = std::nullopt});
    EXPECT_EQ(handle.usedTimeOfDisc(), 0U);
    EXPECT_EQ(handle.freeTimeOfDisc(), 0U);
    EXPECT_EQ(handle.usedSizeOfDisc(), 0U);
    EXPECT_EQ(handle.freeSizeOfDisc(), 0U);
    EXPECT_EQ(handle.availableBurnSpeeds(), std::nullopt);
    EXPECT_EQ(handle.stringForFreeTimeOfDisc(), "00:00:00");
    EXPECT_EQ(handle.stringForFreeSizeOfDisc(), "0 KB");
}

TEST_F(DiscStatusTest, EachFlagIsTheDrives) {
    const auto flags = [&](DiscScript disc) {
        ScriptedPlatform own;
        own.addDrive({.name = "Drive", .disc = std::move(disc)});
        const QuarnerDevice handle("Drive");
        return std::vector<bool>{handle.isDiscBlank(), handle.isDiscAppendable(),
                                 handle.isDiscErasable(), handle.isDiscOverwritable()};
    };
    using Flags = std::vector<bool>;
    const DiscScript none = {.isBlank = false, .isAppendable = false};
    EXPECT_EQ(flags(none), (Flags{false, false, false, false}));
    EXPECT_EQ(flags({.isBlank = true, .isAppendable = false}), (Flags{true, false, false, false}));
    EXPECT_EQ(flags({.isBlank = false, .isAppendable = true}), (Flags{false, true, false, false}));
    EXPECT_EQ(flags({.isBlank = false, .isAppendable = false, .isErasable = true}),
              (Flags{false, false, true, false}));
    EXPECT_EQ(flags({.isBlank = false, .isAppendable = false, .isOverwritable = true}),
              (Flags{false, false, false, true}));
}

struct MediaType {
    const char* type;
    bool isCD;

    friend void PrintTo(const MediaType& media, std::ostream* out) {
        *out << '"' << media.type << '"';
    }
};

class MediaTypeTest : public DiscStatusTest, public ::testing::WithParamInterface<MediaType> {};

TEST_P(MediaTypeTest, IsACDOrNot) {
    EXPECT_EQ(handleOn({.type = GetParam().type}).isCDDisc(), GetParam().isCD);
}

INSTANTIATE_TEST_SUITE_P(DiscStatus, MediaTypeTest,
                         ::testing::Values(MediaType{"DRDeviceMediaTypeCDROM", true},
                                           MediaType{"DRDeviceMediaTypeCDR", true},
                                           MediaType{"DRDeviceMediaTypeCDRW", true},
                                           MediaType{"DRDeviceMediaTypeDVDROM", false},
                                           MediaType{"DRDeviceMediaTypeDVDR", false},
                                           MediaType{"DRDeviceMediaTypeDVDRW", false},
                                           MediaType{"DRDeviceMediaTypeBD", false},
                                           MediaType{"DRDeviceMediaTypeUnknown", false},
                                           MediaType{"", false},
                                           MediaType{"DRDeviceMediaTypeCD", false}));

TEST_F(DiscStatusTest, ABlankAndAppendableDVDIsNoCD) {
    const QuarnerDevice& handle = handleOn({.type = DRDeviceMediaTypeDVDR});
    EXPECT_TRUE(handle.isDiscBlank());
    EXPECT_TRUE(handle.isDiscAppendable());
    EXPECT_FALSE(handle.isCDDisc());
}

TEST_F(DiscStatusTest, TheSpeedsArePassedOnUntouched) {
    const Array speeds = {600, 75, 300.5};
    EXPECT_EQ(handleOn({.speeds = speeds}).availableBurnSpeeds(), speeds);
    EXPECT_EQ(handleOn({.speeds = Array{}}).availableBurnSpeeds(), Array());
}

void expectNeutral(const QuarnerDevice& handle) {
    EXPECT_FALSE(handle.isDiscBlank());
    EXPECT_FALSE(handle.isDiscAppendable());
    EXPECT_FALSE(handle.isDiscErasable());
    EXPECT_FALSE(handle.isDiscOverwritable());
    EXPECT_FALSE(handle.isCDDisc());
    EXPECT_EQ(handle.usedTimeOfDisc(), 0U);
    EXPECT_EQ(handle.freeTimeOfDisc(), 0U);
    EXPECT_EQ(handle.stringForUsedTimeOfDisc(), "00:00:00");
    EXPECT_EQ(handle.stringForFreeTimeOfDisc(), "00:00:00");
    EXPECT_EQ(handle.usedSizeOfDisc(), 0U);
    EXPECT_EQ(handle.freeSizeOfDisc(), 0U);
    EXPECT_EQ(handle.stringForUsedSizeOfDisc(), "0 KB");
    EXPECT_EQ(handle.stringForFreeSizeOfDisc(), "0 KB");
    EXPECT_EQ(handle.availableBurnSpeeds(), std::nullopt);
}

TEST_F(DiscStatusTest, AHandleWithoutADriveIsNeutralThroughout) {
    expectNeutral(QuarnerDevice("none"));
}

TEST_F(DiscStatusTest, AnEmptyDriveIsNeutralThroughout) {
    platform.addDrive({.name = "Empty"});
    expectNeutral(QuarnerDevice("Empty"));
}

} // namespace
} // namespace quarner::testing
