// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

class AudioCapacityTest : public AudioBurnerTest {
protected:
    void append(std::uint32_t frames, std::uint32_t preGapFrames) {
        burner->_content.append(trackOf(frames, preGapFrames));
    }
    bool overflows(std::optional<DiscScript> disc) {
        const auto drive = platform.addDrive({.name = "Drive", .disc = std::move(disc)});
        return burner->isContentOverflowForDevice(QuarnerDevice("Drive"));
    }
    static DiscScript discWithFree(std::uint32_t seconds, std::uint32_t frames = 0) {
        return {.spaceFree = DRMSF::msfWithFrames(seconds * 75 + frames)};
    }
};

TEST_F(AudioCapacityTest, AnEmptyCompilationTakesNothingAndFitsEverywhere) {
    EXPECT_EQ(burner->usedCapacity(), 0U);
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_FALSE(overflows(discWithFree(1)));
    EXPECT_FALSE(overflows(discWithFree(0)));
    EXPECT_FALSE(overflows(std::nullopt));
}

TEST_F(AudioCapacityTest, ThePreGapCounts) {
    append(4500, 150);
    EXPECT_EQ(burner->usedCapacity(), 62U);
}

TEST_F(AudioCapacityTest, FramesCarryFromTrackToTrack) {
    for (int track = 0; track < 3; ++track)
        append(74, 0);
    EXPECT_EQ(burner->usedCapacity(), 2U);
}

TEST_F(AudioCapacityTest, TheFramesOfTheLastSecondAreDropped) {
    append(100, 150);
    append(100, 150);
    EXPECT_EQ(burner->usedCapacity(), 6U);
}

TEST_F(AudioCapacityTest, TimesWrapAroundAtThirtyTwoBits) {
    append(std::numeric_limits<std::uint32_t>::max(), 0);
    EXPECT_EQ(burner->usedCapacity(), 57266230U);
    append(76, 0);
    EXPECT_EQ(burner->usedCapacity(), 1U);
}

TEST_F(AudioCapacityTest, ADriveWithoutADiscFitsWhateverTheContent) {
    append(4500 * 200, 150);
    EXPECT_FALSE(overflows(std::nullopt));
    EXPECT_FALSE(burner->isContentOverflowForDevice(QuarnerDevice("no such drive")));
}

TEST_F(AudioCapacityTest, ContentThatFillsTheDiscExactlyFits) {
    append(120 * 75, 0);
    EXPECT_FALSE(overflows(discWithFree(120)));
}

TEST_F(AudioCapacityTest, OneSecondMoreOverflows) {
    append(121 * 75, 0);
    EXPECT_TRUE(overflows(discWithFree(120)));
}

TEST_F(AudioCapacityTest, BothSidesAreTruncatedToSeconds) {
    append(120 * 75 + 74, 0);
    EXPECT_FALSE(overflows(discWithFree(120)));
    append(1, 0);
    EXPECT_TRUE(overflows(discWithFree(120, 74)));
}

TEST_F(AudioCapacityTest, AnUnknownFreeTimeCountsAsNone) {
    append(75, 0);
    EXPECT_TRUE(overflows(DiscScript{.spaceFree = std::nullopt}));
}

TEST_F(AudioCapacityTest, AfterTheLastItemIsRemovedTheContentIsBlankAgain) {
    append(100, 150);
    EXPECT_FALSE(burner->isContentBlank());
    burner->removeItem(burner->child(0, nullptr));
    EXPECT_TRUE(burner->isContentBlank());
    append(100, 150);
    burner->clearAll();
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_EQ(burner->usedCapacity(), 0U);
}

TEST_F(AudioCapacityTest, TheQueriesChangeAndReportNothing) {
    append(100, 150);
    burner->_estimateTotalLength = 7;
    burner->usedCapacity();
    overflows(discWithFree(1));
    burner->isContentBlank();
    EXPECT_TRUE(delegate.calls().empty());
    EXPECT_EQ(burner->_estimateTotalLength, 7U);
}

TEST_F(AudioCapacityTest, FilesCountWithTheirExactLengths) {
    platform.putSong("/a.mp3", {.seconds = 59.99});
    platform.putSong("/b.mp3", {.seconds = 1.5});
    compile({"/a.mp3", "/b.mp3"});
    // 4500 frames, at least 300 frames, and 150 before each
    EXPECT_EQ(burner->usedCapacity(), (4500U + 300U + 300U) / 75U);
}

} // namespace
} // namespace quarner::testing
